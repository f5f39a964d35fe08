#include "SendCommand.h"

#include <charconv>
#include <cstdint>
#include <cstring>
#include <iostream>

#include <mailengine/mailengine.h>

#include "Border.h"
#include "Failure.h"
#include "MailText.h"
#include "OneLine.h"
#include "ReplyCommand.h"
#include "TerminalWindows.h"

namespace {

constexpr unsigned int kMaxRecipients = 100;  // RFC 5321 4.5.3.1.8: what every server must take; the library's limit

constexpr char kSmtpPort[] = "25";  // RFC 5321 4.5.4.2

// Host and port of HOST, HOST:PORT, [ADDRESS]:PORT; an address of IPv6 without brackets is a host.
struct Server {
    std::string host;
    std::string port;
};

Server Split(const std::string& text) {
    if (text.starts_with('[')) {
        const std::size_t bracket = text.find(']');
        if (bracket == std::string::npos) return {};
        const std::string rest = text.substr(bracket + 1);
        return {text.substr(1, bracket - 1), rest.empty() ? kSmtpPort : rest.starts_with(':') ? rest.substr(1) : rest};
    }
    const std::size_t colon = text.find(':');
    if (colon == std::string::npos || text.find(':', colon + 1) != std::string::npos) return {text, kSmtpPort};
    return {text.substr(0, colon), text.substr(colon + 1)};
}

// Counts what it gets.
class CCountingStream : public COutputStream {
public:
    int Open() override { return 1; }
    void Close() override {}
    int WriteString(const char* text) override {
        m_nBytes += std::strlen(text);
        return 1;
    }
    std::uint64_t Bytes() const { return m_nBytes; }

private:
    std::uint64_t m_nBytes = 0;
};

// The mail addresses that the server will be told, in its order.
std::vector<std::string> RecipientsOf(const CMailDoc& doc) {
    std::vector<std::string> recipients;
    const auto add = [&](const CAddress& address) {
        recipients.push_back(border::ToOutside(address.GetMailAddress().View()));
    };
    for (unsigned int i = 0; i < doc.GetToAddressSize(); ++i)
        add(*doc.GetToAddress(i));
    for (unsigned int i = 0; i < doc.GetCcAddressSize(); ++i)
        add(*doc.GetCcAddress(i));
    for (unsigned int i = 0; i < doc.GetBccAddressSize(); ++i)
        add(*doc.GetBccAddress(i));
    CAddress sender;
    doc.GetFromAddress(sender);
    if (doc.GetSenderBccFlg()) add(sender);
    return recipients;
}

std::string SenderOf(const CMailDoc& doc) {
    CAddress sender;
    doc.GetFromAddress(sender);
    return border::ToOutside(sender.GetMailAddress().View());
}

void CheckEnvelope(const CMailDoc& doc) {
    const std::size_t recipients = RecipientsOf(doc).size();
    if (SenderOf(doc).empty()) throw CFailure("the mail has no sender; give --from");
    if (recipients == 0) throw CFailure("the mail has no recipient; give --to");
    if (recipients > kMaxRecipients) {
        throw CFailure("the mail has " + std::to_string(recipients) +
                       " recipients and a server need not take more than " + std::to_string(kMaxRecipients) +
                       "; send it in parts");
    }
}

void PrintEnvelope(const CMailDoc& doc) {
    CCountingStream size;
    CProgressCallback progress("", 0, nullptr);
    CString error;
    if (!CEMailWriter(&size, doc, progress).Write(error)) throw CFailure(OneLine(error));
    std::cout << "sender: " << SenderOf(doc) << '\n';
    for (const std::string& recipient : RecipientsOf(doc))
        std::cout << "recipient: " << recipient << '\n';
    std::cout << "size: " << size.Bytes() << " bytes\n" << std::flush;
    if (!std::cout) throw CFailure("standard output: cannot be written");
}

void Send(const CMailDoc& doc, bool quiet) {
    CString error;
    int sent = 0;
    bool cancelled = false;
    {
        CTerminalWindows terminal(quiet);
        CProgressCallback progress(border::ToInside("送信中", border::Extent::Line, border::Missing::Refuse, "caption"),
                                   1, nullptr);
        progress.Start(doc.GetMailSize());
        sent = CMailSendRecv::SendWhole(doc, progress, error);
        cancelled = !sent && progress.UserCanceled();
    }
    if (sent) {
        if (!quiet) std::cerr << "送信しました。\n" << std::flush;
        return;
    }
    if (cancelled) throw CFailure("cancelled; the mail was not sent", kExitCancelled);
    const std::string reason = mailtext::LineShown(error.View());
    throw CFailure(reason.empty() ? "the server closed the connection without a reason; the mail was not sent"
                                  : "the mail was not sent: " + reason);
}

}  // namespace

CSendCommand::CSendCommand(CLI::App& program) : CCommand(program, "send", "Send a mail to a mail server") {
    m_letter.AddTo(*m_pCommand);
    m_pCommand->add_option("--server", m_strServer, "The mail server; its port is 25 unless given")
        ->type_name("HOST[:PORT]")
        ->required();
    m_pCommand->add_option("--answer", m_strAnswered, "A mail to answer, as reply does; - is standard input")
        ->type_name("FILE");
    m_pCommand->add_flag("--dry-run", m_bDryRun, "Print sender, recipients and size; connect to nothing");
    m_pCommand->add_flag("--quiet", m_bQuiet, "Show no progress");
    m_pCommand->footer(
        "Texts are UTF-8. The recipients are those of --to, --cc and --bcc, the sender with --sender-bcc, and those "
        "of\n"
        "an answer; they get the whole mail or nothing.\n"
        "Ctrl-C cancels, a second one ends the program at once.\n"
        "Exit status: 0 the server took the mail, 1 failed, 2 the command line is wrong, 130 cancelled.");
}

void CSendCommand::SetServer(CMailDoc& doc) const {
    const Server server = Split(m_strServer);
    int port = 0;
    const char* const end = server.port.data() + server.port.size();
    const auto read = std::from_chars(server.port.data(), end, port);
    if (server.host.empty() || read.ec != std::errc() || read.ptr != end || port < 1 || port > 65535)
        throw CFailure("--server '" + m_strServer + "': give a host, or a host and a port as mail.example.jp:25",
                       kExitUsage);
    doc.SetSendServer(border::ToInside(server.host, border::Extent::Line, border::Missing::Refuse, "--server"), port);
}

int CSendCommand::Run() const {
    CMailDoc doc;
    SetServer(doc);
    if (m_strAnswered.empty())
        m_letter.Fill(doc);
    else
        AnswerMail(m_strAnswered, m_letter, doc);
    CheckEnvelope(doc);
    if (m_bDryRun)
        PrintEnvelope(doc);
    else
        Send(doc, m_bQuiet);
    return 0;
}

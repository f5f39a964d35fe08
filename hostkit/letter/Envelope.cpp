#include <charconv>
#include <cstring>
#include <hostkit/characters/CodePage.h>
#include <hostkit/characters/MailText.h>
#include <hostkit/letter/Attachment.h>
#include <hostkit/letter/Envelope.h>
#include <hostkit/letter/ProgressOperation.h>
#include <netdb.h>

#include <mailengine/support/ProgressCallback.h>
#include <mailengine/transport/MailSendRecv.h>
#include <mailengine/writer/EMailWriter.h>

namespace hostkit {

namespace {

constexpr unsigned int kMaxRecipients = 100;  // RFC 5321 4.5.3.1.8: what every server must take; the library's limit
constexpr std::string_view kSmtpPort = "25";

struct Server {
    std::string_view host;
    std::string_view port;
};

// What stands in no form gives an empty host.
Server Split(std::string_view text) {
    if (text.starts_with('[')) {
        const std::size_t bracket = text.find(']');
        if (bracket == std::string_view::npos) return {};
        const std::string_view rest = text.substr(bracket + 1);
        if (!rest.empty() && !rest.starts_with(':')) return {};
        return {text.substr(1, bracket - 1), rest.empty() ? kSmtpPort : rest.substr(1)};
    }
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos || text.find(':', colon + 1) != std::string_view::npos)
        return {text, kSmtpPort};
    return {text.substr(0, colon), text.substr(colon + 1)};
}

class CountingStream : public COutputStream {
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

std::string MailAddressOf(const CAddress& address) {
    return FromCodePage(address.GetMailAddress().View());
}

Outcome NotDone(Outcome::State state, const Failure& failure) {
    return {state, failure.what(), {}, failure};
}

}  // namespace

void SetServer(std::string_view text, CMailDoc& doc) {
    const Server server = Split(text);
    int port = 0;
    const char* const end = server.port.data() + server.port.size();
    const auto read = std::from_chars(server.port.data(), end, port);
    if (server.host.empty() || read.ec != std::errc() || read.ptr != end || port < 1 || port > 65535)
        throw Failure(FailureKind::Value, {Field::Server, "'" + std::string(text) + "'"},
                      "give a host, or a host and a port as mail.example.jp:25");
    doc.SetSendServer(ToCodePage(server.host, Extent::Line, Missing::Refuse, {Field::Server}), port);
}

std::string SenderOf(const CMailDoc& doc) {
    CAddress sender;
    doc.GetFromAddress(sender);
    return MailAddressOf(sender);
}

std::vector<std::string> RecipientsOf(const CMailDoc& doc) {
    std::vector<std::string> recipients;
    for (unsigned int i = 0; i < doc.GetToAddressSize(); ++i)
        recipients.push_back(MailAddressOf(*doc.GetToAddress(i)));
    for (unsigned int i = 0; i < doc.GetCcAddressSize(); ++i)
        recipients.push_back(MailAddressOf(*doc.GetCcAddress(i)));
    for (unsigned int i = 0; i < doc.GetBccAddressSize(); ++i)
        recipients.push_back(MailAddressOf(*doc.GetBccAddress(i)));
    if (doc.GetSenderBccFlg()) recipients.push_back(SenderOf(doc));
    return recipients;
}

void CheckEnvelope(const CMailDoc& doc) {
    const std::size_t recipients = RecipientsOf(doc).size();
    if (SenderOf(doc).empty()) throw Failure(FailureKind::Value, {Field::From}, "the mail has no sender");
    if (recipients == 0) throw Failure(FailureKind::Value, {Field::To}, "the mail has no recipient");
    if (recipients > kMaxRecipients) {
        throw Failure(FailureKind::Value, {Field::To},
                      "the mail has " + std::to_string(recipients) +
                          " recipients and a server need not take more than " + std::to_string(kMaxRecipients) +
                          "; send it in parts");
    }
}

std::uint64_t MessageBytes(const CMailDoc& doc) {
    CheckAttachedMails(doc);
    CountingStream size;
    CProgressCallback progress("", 0, nullptr);
    CString error;
    if (!CEMailWriter(&size, doc, progress).Write(error)) throw Failure(FailureKind::Input, {}, OneLine(error));
    return size.Bytes();
}

namespace {

// The library tells a number alone; below 0 it is one of the resolver's.
std::string WordsFor(int systemError) {
    if (systemError == 0) return "";
    return std::string(": ") + (systemError < 0 ? gai_strerror(systemError) : std::strerror(systemError));
}

}  // namespace

Outcome SendLetter(const CMailDoc& doc, const Progress& progress) {
    try {
        CheckEnvelope(doc);
        CheckAttachedMails(doc);
        ProgressOperation operation("送信中", doc.GetMailSize(), progress);
        const CMailSendRecv::Result result = CMailSendRecv::SendWhole(doc, CStringArray(), operation.Engine());
        if (result.outcome == CMailSendRecv::kTaken) {
            operation.Complete();
            return {};
        }
        const std::string reason = LineShown(result.text.View()) + WordsFor(result.systemError);
        if (result.outcome == CMailSendRecv::kUnknown)
            return NotDone(Outcome::State::Unknown,
                           {FailureKind::Delivery, {}, "the server may have taken the mail: " + reason});
        // Not every cancel comes in time: one behind the end of the mail leaves a text, or changes nothing.
        if (reason.empty()) return {Outcome::State::Cancelled, "cancelled; the mail was not sent"};
        throw Failure(FailureKind::Delivery, {}, "the mail was not sent: " + reason);
    } catch (const Failure& failure) {
        return NotDone(Outcome::State::Failed, failure);
    }
}

}  // namespace hostkit

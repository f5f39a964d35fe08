#include <charconv>
#include <cstring>
#include <filesystem>
#include <hostkit/attachments/CarriedFiles.h>
#include <hostkit/characters/CodePage.h>
#include <hostkit/characters/MailText.h>
#include <hostkit/characters/Words.h>
#include <hostkit/letter/Addresses.h>
#include <hostkit/letter/BlindCopies.h>
#include <hostkit/letter/Envelope.h>
#include <set>

#include <mailengine/model/Recipients.h>
#include <mailengine/support/ProgressCallback.h>
#include <mailengine/support/platform/files/Path.h>
#include <mailengine/transport/Smtp.h>
#include <mailengine/writer/EMailWriter.h>

namespace hostkit {

namespace {

constexpr std::uint64_t kMaxRestBytes = 1u << 20;  // of a message, beside body and attachments
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

}  // namespace

void SetServer(std::string_view text, CMailDoc& doc) {
    const Server server = Split(text);
    int port = 0;
    const char* const end = server.port.data() + server.port.size();
    const auto read = std::from_chars(server.port.data(), end, port);
    if (server.host.empty() || server.host.find_first_of(" \t") != std::string_view::npos || read.ec != std::errc() ||
        read.ptr != end || port < 1 || port > 65535)
        throw Failure(FailureKind::Value, {Field::Server, "'" + std::string(text) + "'"},
                      Words("give a host, or a host and a port as mail.example.jp:25"));
    doc.SetSendServer(ToCodePage(server.host, Extent::Line, Missing::Refuse, {Field::Server}), port);
}

std::string SenderOf(const CMailDoc& doc) {
    CAddress sender;
    doc.GetFromAddress(sender);
    return MailAddressOf(sender);
}

std::vector<std::string> RecipientsOf(const CMailDoc& doc) {
    std::vector<std::string> recipients;
    std::set<std::string> named;
    const auto add = [&](const std::string& address) {
        if (named.insert(ComparedAddress(address)).second) recipients.push_back(address);
    };
    ForEachRecipient(doc, [&](const CAddress& address) { add(MailAddressOf(address)); });
    return recipients;
}

void CheckEnvelope(const CMailDoc& doc) {
    const std::size_t recipients = RecipientsOf(doc).size();
    if (SenderOf(doc).empty()) throw Failure(FailureKind::Value, {Field::From}, Words("the mail has no sender"));
    if (recipients == 0) throw Failure(FailureKind::Value, {Field::To}, Words("the mail has no recipient"));
    if (recipients > CSmtp::kMaxRecipients) {
        throw Failure(FailureKind::Value, {Field::To},
                      Words("the mail has {1} recipients and a server need not take more than {2}; send it in parts",
                            recipients, static_cast<std::size_t>(CSmtp::kMaxRecipients)));
    }
}

void CheckSize(CMailDoc& doc, std::uint64_t limit) {
    std::vector<CMailDoc::FileInfo> files;
    doc.GetFiles(files);
    std::uint64_t bytes = 0;
    for (const CMailDoc::FileInfo& file : files) {
        std::error_code gone;
        const std::uintmax_t size = std::filesystem::file_size(platform::ToNativePath(file.Path), gone);
        if (!gone)
            bytes += file.Path.Right(4) == ".eml" ? size : size / 54 * 74;  // at least, in lines of 72 characters
    }
    CString body;
    doc.GetBody(body);
    const std::uint64_t most = bytes + kMaxRestBytes + 8 * static_cast<std::uint64_t>(body.GetLength());
    if (bytes <= limit && most > limit) bytes = MessageBytes(doc);
    CheckSize(bytes, limit);
}

void CheckSize(std::uint64_t bytes, std::uint64_t limit) {
    if (bytes > limit)
        throw Failure(
            FailureKind::Value, {},
            Words("the mail has {1} bytes, and the limit is {2}; send it in parts, or raise the limit", bytes, limit));
}

std::uint64_t MessageBytes(CMailDoc& doc) {
    const CarriedFiles carried(doc, Copied::Needed);
    const BlindCopies blind(doc);
    CountingStream size;
    CProgressCallback progress("", 0, nullptr);
    CString error;
    if (!CEMailWriter(&size, doc, progress).Write(error))
        throw Failure(FailureKind::Input, {}, carried.InUsersNames(OneLine(error)));
    return size.Bytes();
}

}  // namespace hostkit

#include <algorithm>
#include <hostkit/gateway/Glance.h>
#include <hostkit/gateway/entities/Addresses.h>
#include <hostkit/gateway/entities/Content.h>
#include <hostkit/gateway/entities/Fields.h>
#include <hostkit/gateway/entities/ParserOptions.h>
#include <hostkit/gateway/text/EncodedWords.h>
#include <initializer_list>
#include <memory>

namespace hostkit {
namespace {

using namespace gateway;

std::optional<std::int64_t> TimeOf(const std::string& date) {
    (void)Options();  // GMime is ready behind it
    const std::unique_ptr<GDateTime, decltype(&g_date_time_unref)> time(g_mime_utils_header_decode_date(date.c_str()),
                                                                        &g_date_time_unref);
    if (!time) return std::nullopt;
    return g_date_time_to_unix(time.get());
}

bool MayHaveAttachments(const Content& content) {
    if (content.Is("multipart/mixed")) return true;
    if (content.IsMultipart()) return false;
    const bool isText = content.IsText() || content.Is("application/xhtml+xml");
    return content.isAttachment || !isText;
}

// A memo or a table whose every line is "word: text" looks like a header too.
bool HasFieldOfMail(const Header& header) {
    const auto hasAny = [&](std::initializer_list<std::string_view> names) {
        return std::any_of(names.begin(), names.end(),
                           [&](std::string_view name) { return header.Find(name) != nullptr; });
    };
    return hasAny({"From", "To", "Cc", "Bcc", "Subject", "Date", "Message-ID", "Sender", "Reply-To", "In-Reply-To"}) ||
           hasAny({"References", "Received", "Return-Path", "Delivered-To", "Newsgroups", "MIME-Version"}) ||
           hasAny({"Content-Type", "Content-Transfer-Encoding", "Content-Disposition"});
}

}  // namespace

std::size_t EndOfHeader(std::string_view message) {
    const std::size_t top = std::min(message.find_first_not_of("\r\n"), message.size());
    const auto endsBlock = [&](std::size_t at) {
        const std::string_view next = message.substr(at + 1);
        return next.starts_with('\n') || next.starts_with("\r\n");
    };
    std::size_t end = message.find('\n', top);  // not by a search for two line ends, which a long body may lack
    while (end != std::string_view::npos && !endsBlock(end))
        end = message.find('\n', end + 1);
    end = std::min(end, message.substr(0, end).find("\r\r", top));
    return end == std::string_view::npos ? message.size() : end + 1;
}

Glance GlanceAt(std::string_view message) {
    std::string text(message.substr(0, EndOfHeader(message)));
    if (text.find('\n') == std::string::npos) std::replace(text.begin(), text.end(), '\r', '\n');
    std::size_t bodyTop = 0;
    const Header header = ReadHeader(std::string_view(text).substr(TopOfMessage(text)), bodyTop);
    const Content content = ReadContent(header, "text/plain");
    const auto value = [&](std::string_view name) {
        const Field* const field = header.Find(name);
        return field == nullptr ? "" : DecodeWords(Unfold(field->raw), Words::Text, content.charset);
    };
    Glance glance;
    glance.isMessage = HasFieldOfMail(header);
    if (const Field* const from = header.Find("From"); from != nullptr) {
        std::vector<Mailbox> senders;
        ReadAddresses(from->raw, content.charset, senders);
        if (!senders.empty()) glance.from = std::move(senders.front());
    }
    glance.subject = value("Subject");
    glance.date = value("Date");
    glance.time = TimeOf(glance.date);
    glance.hasAttachments = MayHaveAttachments(content);
    return glance;
}

}  // namespace hostkit

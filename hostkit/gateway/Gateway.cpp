#include <algorithm>
#include <cstdlib>
#include <hostkit/characters/Words.h>
#include <hostkit/files/FileName.h>
#include <hostkit/gateway/Dialect.h>
#include <hostkit/gateway/Gateway.h>
#include <hostkit/gateway/Reading.h>
#include <hostkit/gateway/Writer.h>
#include <hostkit/gateway/entities/Addresses.h>
#include <hostkit/gateway/entities/Entity.h>
#include <hostkit/gateway/text/EncodedWords.h>
#include <iterator>

namespace hostkit {
namespace {

using namespace gateway;

constexpr const char* kTooLarge = Marked("is 2 GiB or larger, which no message may be; give single messages");
constexpr const char* kTooLargeInside = Marked("holds more than 2 GiB once its attachments are written for the engine");
constexpr const char* kEmpty = Marked("is empty; a message begins with header fields");

// Old systems end lines by CR alone.
void EndLines(std::string& text) {
    if (text.find('\n') == std::string::npos) std::replace(text.begin(), text.end(), '\r', '\n');
}

class HeaderTexts {
public:
    // letter is the charset of the text below, or empty.
    HeaderTexts(const Header& header, std::string_view letter, std::vector<Notice>& notices)
        : m_header(header), m_letter(letter), m_notices(notices) {}

    std::vector<Mailbox> Addresses(std::string_view name) const {
        std::vector<Mailbox> mailboxes;
        bool areAll = true;
        for (const Field& field : m_header.fields)
            if (areAll && EqualNames(field.name, name)) areAll = ReadAddresses(field.raw, m_letter, mailboxes);
        if (!areAll) m_notices.push_back({Notice::Kind::TooManyAddresses, std::string(name)});
        return mailboxes;
    }

    std::string Text(std::string_view name) const {
        const Field* const field = m_header.Find(name);
        return field == nullptr ? "" : DecodeWords(Unfold(field->raw), Words::Text, m_letter);
    }

private:
    const Header& m_header;
    std::string_view m_letter;
    std::vector<Notice>& m_notices;
};

// The charset that the first text of a message to name one names.
std::string_view CharsetOfLetter(const Entity& entity) {
    std::string_view charset = entity.content.charset;
    for (const Entity& part : entity.parts)
        if (charset.empty()) charset = CharsetOfLetter(part);
    return charset;
}

void WriteHeader(const HeaderTexts& header, Passed& passed, Writer& writer) {
    passed.replyTo = header.Addresses("Reply-To");
    const std::string answered = header.Text("In-Reply-To");
    const std::string references = header.Text("References");
    writer.AddText("Date", header.Text("Date"));
    writer.AddAddresses("From", header.Addresses("From"));
    writer.AddAddresses("Reply-To", passed.replyTo);
    writer.AddAddresses("To", header.Addresses("To"));
    writer.AddAddresses("Cc", header.Addresses("Cc"));
    writer.AddText("Subject", header.Text("Subject"));
    writer.AddText("Message-ID", header.Text("Message-ID"));
    writer.AddText("In-Reply-To", answered);
    // RFC 5322 3.6.4: an answer to a mail that names the mail it answers, and no others, refers to both.
    const bool isOne = std::count(answered.begin(), answered.end(), '<') == 1;
    writer.AddText("References", references.empty() && isOne ? answered : references);
}

void WriteFiles(const Reading& reading, const GatewayLimits& limits, Passed& passed, Writer& writer) {
    UniqueFileNames names;
    for (const Attached& file : reading.files) {
        std::string room;
        const std::string_view data = DataOf(*file.entity, room);
        if (writer.Size() > limits.bytes - std::min(limits.bytes, data.size() / 3 * 4 + data.size() / 20)) {
            passed.refusal = hostkit::Words(kTooLargeInside);
            return;
        }
        std::string name = CleanFileName(file.name);
        name = names.Take(name.empty() ? "_" : name);
        writer.AddFile(name, data);
        passed.files.push_back({std::move(name), file.isMade ? "" : file.name, file.entity->content.type, data.size()});
    }
}

void Rewrite(std::string_view text, const GatewayLimits& limits, Passed& passed) {
    const Tree tree = ReadTree(text, {limits.depth, limits.parts});
    Reading reading = Read(tree);
    Writer writer(passed.characters);
    WriteHeader({tree.root.header, CharsetOfLetter(tree.root), passed.notices}, passed, writer);
    writer.BeginBody(reading.text, reading.files.size());
    WriteFiles(reading, limits, passed, writer);
    if (!passed.refusal.empty()) return;
    passed.message = writer.Take();
    passed.changed = true;
    passed.mayHoldFiles = !passed.files.empty();
    passed.alternatives = std::move(reading.alternatives);
    std::move(reading.notices.begin(), reading.notices.end(), std::back_inserter(passed.notices));
    const std::size_t replaced = passed.characters.Replaced();
    if (replaced > 0) passed.notices.push_back({Notice::Kind::Replaced, std::to_string(replaced)});
}

std::string WithCrlf(std::string_view text) {
    std::string lines;
    lines.reserve(text.size() + text.size() / 32);
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        lines.append(text, at, end - at);
        if (end < text.size()) lines += "\r\n";
        at = end + 1;
    }
    return lines;
}

bool IsMultipart(std::string_view type) {
    constexpr std::string_view kMultipart = "multipart/";
    const std::size_t top = std::min(type.find_first_not_of(" \t\r\n"), type.size());
    return EqualNames(type.substr(top, kMultipart.size()), kMultipart);
}

// Takes a message of the dialect over. Stores of this system end lines by LF alone, which is no difference.
bool PassAsItIs(std::string& message, const GatewayLimits& limits, Passed& passed) {
    if (message.find('\r') == std::string::npos) {
        std::string lines = WithCrlf(message);
        if (lines.size() > limits.bytes || !IsInDialect(lines, limits.parts)) return false;
        message = std::move(lines);
    } else if (!IsInDialect(message, limits.parts)) {
        return false;
    }
    std::size_t bodyTop = 0;
    const Header header = ReadHeader(message, bodyTop);
    passed.replyTo = HeaderTexts(header, "", passed.notices).Addresses("Reply-To");
    const Field* const type = header.Find("Content-Type");
    passed.mayHoldFiles = type != nullptr && IsMultipart(type->raw);
    passed.message = std::move(message);
    return true;
}

unsigned long Count(const std::string& detail) {
    return std::strtoul(detail.c_str(), nullptr, 10);
}

}  // namespace

std::string Notice::Sentence() const {
    switch (kind) {
        case Kind::Cut:
            return hostkit::Words("the message is cut off, or a closing delimiter is missing");
        case Kind::TooDeep:
            return hostkit::Words("parts nest too deep; what lies there is attached as it came");
        case Kind::TooMany:
            return CountedWords(Count(detail), "{1} part is left out; the message has too many",
                                "{1} parts are left out; the message has too many");
        case Kind::TooManyAddresses:
            return hostkit::Words("addresses in {1} are left out; it has more than 10000", detail);
        case Kind::UnknownEncoding:
            return hostkit::Words("a part stays encoded; its transfer encoding '{1}' is not known", detail);
        case Kind::UnknownBytes:
            return CountedWords(Count(detail), "in {1} place the text holds bytes that are no characters",
                                "in {1} places the text holds bytes that are no characters");
        case Kind::Encrypted:
            return hostkit::Words("the text is encrypted or sealed, and lies in an attachment");
        case Kind::Replaced:
            return CountedWords(
                Count(detail),
                "{1} character is shown as 〓; a message may hold 1880 different ones that are not Japanese",
                "{1} characters are shown as 〓; a message may hold 1880 different ones that are not Japanese");
    }
    return "";
}

Passed PassThrough(std::string message, const GatewayLimits& limits) {
    Passed passed;
    if (message.size() > limits.bytes) passed.refusal = hostkit::Words(kTooLarge);
    if (message.find_first_not_of("\r\n") == std::string::npos) passed.refusal = hostkit::Words(kEmpty);
    if (!passed.refusal.empty()) return passed;
    EndLines(message);
    message.erase(0, TopOfMessage(message));
    if (!PassAsItIs(message, limits, passed)) Rewrite(message, limits, passed);
    return passed;
}

}  // namespace hostkit

#include <algorithm>
#include <cctype>
#include <hostkit/files/FileName.h>
#include <hostkit/gateway/Writer.h>

#include <mailengine/encoding/Base64.h>
#include <mailengine/support/platform/text/Characters.h>

namespace hostkit::gateway {
namespace {

constexpr std::string_view kBoundary = "gateway-part";  // all content is Base64, so no line of it can begin with "--"
constexpr std::size_t kWordBytes = 42;                  // of text in an encoded word: 75 characters at most
constexpr std::size_t kLineBytes = 57;                  // of data in a line of Base64
constexpr std::size_t kPieceBytes = kLineBytes * 4096;
constexpr std::size_t kMaxPlainBytes = 900;  // of a value that stands on one line
constexpr std::size_t kMaxNameBytes = 240;   // of a name on disk: the engine may put a number behind it

// What the engine would take for structure in an address, and in the parameters of a field.
constexpr std::string_view kAddressStructure = ",<>\"\\";

std::string Base64Of(std::string_view bytes) {
    CString text;
    CBase64::Encode(reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<unsigned int>(bytes.size()),
                    text);
    return std::string(text.View());
}

bool IsPlain(std::string_view text) {
    const bool isPrintable = std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c < 0x7F; });
    return isPrintable && text.size() <= kMaxPlainBytes && text.find("=?") == std::string_view::npos;
}

// Whether it needs no quotes in a name (RFC 5322 3.2.3; the dot is in use).
bool IsAtomText(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 ||
           std::string_view(" !#$%&'*+-./^_`{|}~").find(c) != std::string_view::npos;
}

// Encoded words on lines of their own: between those the engine puts nothing.
void AppendWords(std::string_view text, std::string& field) {
    field.reserve(field.size() + text.size() * 2);
    for (bool isFirst = true; !text.empty(); isFirst = false) {
        std::size_t length = 0;
        while (length < text.size() && length + platform::CharacterBytes(text, length) <= kWordBytes)
            length += platform::CharacterBytes(text, length);
        field += isFirst ? "=?shift_jis?B?" : "\r\n\t=?shift_jis?B?";
        field += Base64Of(text.substr(0, length)) + "?=";
        text.remove_prefix(length);
    }
}

void AppendValue(const std::string& text, std::string& field) {
    if (IsPlain(text))
        field += text;
    else
        AppendWords(text, field);
}

std::string ValueOf(const std::string& text) {
    std::string value;
    AppendValue(text, value);
    return value;
}

// Control characters would end a field, or mean something to a terminal that shows it.
std::string OneLine(std::string line) {
    for (char& c : line)
        if (static_cast<unsigned char>(c) < ' ' || c == 0x7F) c = ' ';
    return line;
}

// The name as a file of the engine can bear it, wherever it goes: each character that CP932 lacks takes three bytes.
std::string NameForEngine(std::string name) {
    for (char& c : name)
        if (std::string_view("\\/:,;*?\"<>|").find(c) != std::string_view::npos) c = '_';
    std::size_t most = kMaxNameBytes;
    const auto bytesOnDisk = [](std::string_view text) {
        std::size_t bytes = 0;
        for (const char c : text)
            bytes += static_cast<unsigned char>(c) < 0x80 ? 1 : (static_cast<unsigned char>(c) >= 0xC0 ? 3 : 0);
        return bytes;
    };
    while (bytesOnDisk(name) > kMaxNameBytes)
        name = CleanFileName(name, most -= 8);
    return name.empty() ? "_" : name;
}

std::string CrlfLines(std::string_view text) {
    std::string lines;
    lines.reserve(text.size() + text.size() / 32);
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r' && text[i] != '\n') {
            lines += text[i];
            continue;
        }
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
        lines += "\r\n";
    }
    return lines;
}

// How much of a text is converted at once, so that no copy of a large one is made. Cuts no line end and no character.
std::size_t PieceBytes(std::string_view text) {
    if (text.size() <= kPieceBytes) return text.size();
    const std::size_t end = text.rfind('\n', kPieceBytes);
    if (end != std::string_view::npos) return end + 1;
    std::size_t bytes = kPieceBytes;
    while (bytes > kPieceBytes - 4 && (static_cast<unsigned char>(text[bytes]) & 0xC0) == 0x80)
        --bytes;
    return bytes;
}

}  // namespace

void Writer::AddText(std::string_view name, std::string value) {
    const std::string text = m_characters.ToDialect(OneLine(std::move(value)));
    if (text.empty()) return;
    m_message.append(name).append(": ");
    AppendValue(text, m_message);
    m_message += "\r\n";
}

void Writer::AddAddresses(std::string_view name, const std::vector<Mailbox>& mailboxes) {
    if (mailboxes.empty()) return;
    m_message.append(name).append(": ");
    for (std::size_t i = 0; i < mailboxes.size(); ++i)
        m_message.append(i == 0 ? "" : ",\r\n\t").append(ItemOf(mailboxes[i]));
    m_message += "\r\n";
}

// The engine splits a decoded list at every comma and looks for angles in each piece, so these take places of the table
// where they belong to a name. A plain name keeps them between quotes, but for what is special even there.
std::string Writer::ItemOf(const Mailbox& mailbox) {
    std::string address = ValueOf(m_characters.ToDialect(OneLine(mailbox.address), kAddressStructure));
    if (mailbox.name.empty()) return address;
    const std::string name = OneLine(mailbox.name);
    const bool isQuotable = IsPlain(name) && name.find_first_of("<>\"\\") == std::string::npos;
    if (IsPlain(name) && std::all_of(name.begin(), name.end(), IsAtomText)) return name + " <" + address + '>';
    if (isQuotable) return '"' + name + "\" <" + address + '>';
    return ValueOf(m_characters.ToDialect(name, kAddressStructure)) + " <" + address + '>';
}

void Writer::BeginBody(std::string_view text, std::size_t files) {
    m_isMultipart = files > 0;
    m_message += "MIME-Version: 1.0\r\n";
    if (m_isMultipart)
        m_message.append("Content-Type: multipart/mixed; boundary=")
            .append(kBoundary)
            .append("\r\n\r\n--")
            .append(kBoundary)
            .append("\r\n");
    m_message += "Content-Type: text/plain; charset=shift_jis\r\nContent-Transfer-Encoding: base64\r\n\r\n";
    m_message.reserve(m_message.size() + text.size() + text.size() / 2);
    std::string waiting;
    while (!text.empty()) {
        const std::string_view piece = text.substr(0, PieceBytes(text));
        text.remove_prefix(piece.size());
        waiting += m_characters.ToDialect(CrlfLines(piece));
        AddBase64Lines(text.empty() ? waiting
                                    : std::string_view(waiting).substr(0, waiting.size() / kLineBytes * kLineBytes));
        waiting.erase(0, waiting.size() / kLineBytes * kLineBytes);
    }
    m_message += "\r\n";
}

void Writer::AddFile(const std::string& name, std::string_view data) {
    const std::string value = m_characters.ToDialect(NameForEngine(name));
    m_message.append("--").append(kBoundary).append("\r\nContent-Type: application/octet-stream; name=\"");
    m_message.append(ValueOf(value)).append("\"\r\nContent-Transfer-Encoding: base64\r\n\r\n");
    AddBase64(data);
}

void Writer::AddBase64(std::string_view data) {
    AddBase64Lines(data);
    m_message += "\r\n";
}

void Writer::AddBase64Lines(std::string_view data) {
    for (; !data.empty(); data.remove_prefix(std::min(data.size(), kPieceBytes))) {
        const std::string text = Base64Of(data.substr(0, kPieceBytes));
        for (std::size_t at = 0; at < text.size(); at += kLineBytes / 3 * 4)
            m_message.append(text, at, kLineBytes / 3 * 4).append("\r\n");
    }
}

std::string Writer::Take() {
    if (m_isMultipart) m_message.append("--").append(kBoundary).append("--\r\n");
    return std::move(m_message);
}

}  // namespace hostkit::gateway

// mimetic leaves charsets and encoded words to its user: they are done here, in the way of a host that knows its mail.
#include <bench/Bench.h>
#include <bench/Libraries.h>
#include <ctime>
#include <fstream>
#include <iconv.h>
#include <iterator>
#include <mimetic/mimetic.h>
#include <sstream>

namespace {

constexpr char kCharset[] = "ISO-2022-JP";

// An iconv that stays open from mail to mail.
class Converter {
public:
    Converter(const char* to, const char* from) : m_converter(iconv_open(to, from)) {}
    ~Converter() { iconv_close(m_converter); }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    std::string operator()(const std::string& text) {
        std::string out(text.size() * 3 + 16, '\0');
        char* source = const_cast<char*>(text.data());
        char* target = out.data();
        std::size_t left = text.size(), room = out.size();
        bench::Require(iconv(m_converter, &source, &left, &target, &room) == 0 &&
                           iconv(m_converter, nullptr, nullptr, &target, &room) == 0,
                       "iconv stopped");
        out.resize(out.size() - room);
        return out;
    }

private:
    iconv_t m_converter;
};

std::string ToJis(const std::string& text) {
    static Converter converter(kCharset, "UTF-8");
    return converter(text);
}

std::string FromJis(const std::string& text) {
    static Converter converter("UTF-8", kCharset);
    return converter(text);
}

template <class Codec>
std::string Coded(const std::string& text, Codec codec) {
    std::string out;
    out.reserve(text.size() * 2);
    mimetic::code(text.begin(), text.end(), codec, std::back_inserter(out));
    return out;
}

std::string EncodedWord(const std::string& text) {
    return std::string("=?") + kCharset + "?B?" + Coded(ToJis(text), mimetic::Base64::Encoder(0)) + "?=";
}

// Of a text in which every encoded word is ISO-2022-JP under Base64.
std::string WithoutWords(const std::string& text) {
    static const std::string head = "=?iso-2022-jp?B?";
    std::string out;
    std::size_t at = 0;
    for (std::size_t word; (word = text.find(head, at)) != std::string::npos;) {
        const std::size_t begin = word + head.size(), end = text.find("?=", begin);
        out.append(text, at, word - at)
            .append(FromJis(Coded(text.substr(begin, end - begin), mimetic::Base64::Decoder())));
        at = end + 2;
    }
    return out.append(text, at);
}

std::string Now() {
    const std::time_t now = std::time(nullptr);
    char text[64];
    return {text, std::strftime(text, sizeof text, "%a, %d %b %Y %H:%M:%S %z", std::localtime(&now))};
}

void FillHeader(mimetic::MimeEntity& entity, const bench::Letter& letter) {
    mimetic::Header& header = entity.header();
    header.from(EncodedWord(letter.fromName) + " <" + letter.fromAddress + ">");
    header.to(EncodedWord(letter.toName) + " <" + letter.toAddress + ">");
    header.field("Date").value(Now());
    header.messageid(mimetic::MessageId());
    header.subject(EncodedWord(letter.subject));
    header.mimeVersion(mimetic::MimeVersion("1.0"));
}

void FillText(mimetic::MimeEntity& entity, const std::string& body) {
    entity.header().contentType(mimetic::ContentType(std::string("text/plain; charset=") + kCharset));
    entity.header().contentTransferEncoding(mimetic::ContentTransferEncoding("base64"));
    entity.body().set(Coded(ToJis(body), mimetic::Base64::Encoder()));
}

std::string Write(const bench::Letter& letter) {
    mimetic::MimeEntity entity;
    FillHeader(entity, letter);
    FillText(entity, letter.body);
    std::ostringstream out;
    out << entity;
    return out.str();
}

void WriteFile(const bench::Letter& letter, const std::string& attachment, const std::string& path) {
    mimetic::MultipartMixed mixed;
    FillHeader(mixed, letter);
    auto* const text = new mimetic::MimeEntity;
    FillText(*text, letter.body);
    mixed.body().parts().push_back(text);
    mixed.body().parts().push_back(
        new mimetic::Attachment(attachment, mimetic::ContentType("application/octet-stream")));
    std::ofstream out(path, std::ios::binary);
    out << mixed;
    out.close();
    bench::Require(out.good(), "mimetic cannot write");
}

void Extract(const mimetic::MimeEntity& part, const std::string& folder) {
    std::ofstream out(folder + "/" + part.header().contentDisposition().param("filename"), std::ios::binary);
    mimetic::Base64::Decoder decoder;
    const mimetic::Body& body = part.body();
    mimetic::decode(body.begin(), body.end(), decoder, std::ostreambuf_iterator<char>(out));
    out.close();
    bench::Require(out.good(), "mimetic cannot extract");
}

bench::Letter Read(const CString& message, const std::string& folder) {
    const std::string_view bytes = message.View();
    mimetic::MimeEntity entity(bytes.begin(), bytes.end());
    const mimetic::Header& header = entity.header();
    const mimetic::Mailbox from = header.from().front();
    const mimetic::Mailbox to = header.to().front().mailbox();
    bench::Letter letter{WithoutWords(from.label()),     from.mailbox() + "@" + from.domain(),
                         WithoutWords(to.label()),       to.mailbox() + "@" + to.domain(),
                         WithoutWords(header.subject()), ""};
    mimetic::MimeEntityList& parts = entity.body().parts();
    const mimetic::MimeEntity& text = parts.empty() ? entity : *parts.front();
    letter.body = FromJis(Coded(text.body(), mimetic::Base64::Decoder()));
    if (!parts.empty()) Extract(*parts.back(), folder);
    return letter;
}

}  // namespace

const bench::Library bench::kMimetic{"mimetic", "UTF-8", Write, WriteFile, Read};

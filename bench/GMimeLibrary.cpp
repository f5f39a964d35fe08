#include <bench/Bench.h>
#include <bench/Libraries.h>
#include <fcntl.h>
#include <gmime/gmime.h>
#include <memory>

namespace {

constexpr char kCharset[] = "iso-2022-jp";

struct Release {
    void operator()(void* object) const { g_object_unref(object); }
};
template <class Object>
using Held = std::unique_ptr<Object, Release>;

// g_mime_init is for once.
void Start() {
    static const bool started = (g_mime_init(), true);
    (void)started;
}

void SetMailbox(InternetAddressList* list, const std::string& name, const std::string& address) {
    const Held<InternetAddress> mailbox(internet_address_mailbox_new(name.c_str(), address.c_str()));
    internet_address_set_charset(mailbox.get(), kCharset);
    internet_address_list_add(list, mailbox.get());
}

Held<GMimeMessage> NewMessage(const bench::Letter& letter, GMimeObject* content) {
    Start();
    Held<GMimeMessage> message(g_mime_message_new(TRUE));
    SetMailbox(g_mime_message_get_from(message.get()), letter.fromName, letter.fromAddress);
    SetMailbox(g_mime_message_get_to(message.get()), letter.toName, letter.toAddress);
    GDateTime* const now = g_date_time_new_now_local();
    g_mime_message_set_date(message.get(), now);
    g_date_time_unref(now);
    char* const id = g_mime_utils_generate_message_id("example.co.jp");
    g_mime_message_set_message_id(message.get(), id);
    g_free(id);
    g_mime_message_set_subject(message.get(), letter.subject.c_str(), kCharset);
    g_mime_message_set_mime_part(message.get(), content);
    return message;
}

// The body goes out as UTF-8, GMime's own choice, and is spared a conversion.
Held<GMimeTextPart> NewText(const std::string& body) {
    Start();
    Held<GMimeTextPart> text(g_mime_text_part_new());
    g_mime_text_part_set_text(text.get(), body.c_str());
    g_mime_part_set_content_encoding(GMIME_PART(text.get()), GMIME_CONTENT_ENCODING_BASE64);
    return text;
}

Held<GMimePart> NewAttachment(const std::string& path) {
    const Held<GMimeStream> file(g_mime_stream_fs_open(path.c_str(), O_RDONLY, 0, nullptr));
    const Held<GMimeDataWrapper> content(
        g_mime_data_wrapper_new_with_stream(file.get(), GMIME_CONTENT_ENCODING_DEFAULT));
    Held<GMimePart> part(g_mime_part_new_with_type("application", "octet-stream"));
    g_mime_part_set_content(part.get(), content.get());
    g_mime_part_set_filename(part.get(), path.substr(path.rfind('/') + 1).c_str());
    g_mime_part_set_content_encoding(part.get(), GMIME_CONTENT_ENCODING_BASE64);
    return part;
}

// Lines end in LF, GMime's own choice: the CRLF of the wire would cost it one more filter.
void WriteTo(GMimeStream* stream, GMimeMessage* message) {
    bench::Require(
        g_mime_object_write_to_stream(GMIME_OBJECT(message), nullptr, stream) > 0 && g_mime_stream_flush(stream) == 0,
        "gmime cannot write");
}

std::string Write(const bench::Letter& letter) {
    const auto message = NewMessage(letter, GMIME_OBJECT(NewText(letter.body).get()));
    const Held<GMimeStream> stream(g_mime_stream_mem_new());
    WriteTo(stream.get(), message.get());
    const GByteArray* const bytes = g_mime_stream_mem_get_byte_array(GMIME_STREAM_MEM(stream.get()));
    return std::string(reinterpret_cast<const char*>(bytes->data), bytes->len);
}

void WriteFile(const bench::Letter& letter, const std::string& attachment, const std::string& path) {
    Start();
    const Held<GMimeMultipart> mixed(g_mime_multipart_new_with_subtype("mixed"));
    g_mime_multipart_add(mixed.get(), GMIME_OBJECT(NewText(letter.body).get()));
    g_mime_multipart_add(mixed.get(), GMIME_OBJECT(NewAttachment(attachment).get()));
    const auto message = NewMessage(letter, GMIME_OBJECT(mixed.get()));
    const Held<GMimeStream> stream(g_mime_stream_fs_open(path.c_str(), O_WRONLY | O_CREAT, 0600, nullptr));
    WriteTo(stream.get(), message.get());
}

struct Finding {
    bench::Letter letter;
    const std::string& folder;
};

void Extract(GMimePart* part, const std::string& path) {
    const Held<GMimeStream> file(g_mime_stream_fs_open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600, nullptr));
    bench::Require(g_mime_data_wrapper_write_to_stream(g_mime_part_get_content(part), file.get()) >= 0 &&
                       g_mime_stream_flush(file.get()) == 0,
                   "gmime cannot extract");
}

void Visit(GMimeObject*, GMimeObject* part, gpointer data) {
    auto& finding = *static_cast<Finding*>(data);
    if (!GMIME_IS_PART(part)) return;
    if (const char* const name = g_mime_part_get_filename(GMIME_PART(part)); name != nullptr) {
        Extract(GMIME_PART(part), finding.folder + "/" + name);
    } else if (GMIME_IS_TEXT_PART(part)) {
        char* const text = g_mime_text_part_get_text(GMIME_TEXT_PART(part));
        finding.letter.body = text;
        g_free(text);
    }
}

void TakeMailbox(InternetAddressList* list, std::string& name, std::string& address) {
    InternetAddress* const first = internet_address_list_get_address(list, 0);
    name = internet_address_get_name(first);
    address = internet_address_mailbox_get_addr(INTERNET_ADDRESS_MAILBOX(first));
}

bench::Letter Read(const CString& message, const std::string& folder) {
    Start();
    // The stream reads the bytes where they are.
    GByteArray bytes{reinterpret_cast<guint8*>(const_cast<char*>(message.View().data())),
                     static_cast<guint>(message.View().size())};
    const Held<GMimeStream> stream(g_mime_stream_mem_new_with_byte_array(&bytes));
    g_mime_stream_mem_set_owner(GMIME_STREAM_MEM(stream.get()), FALSE);
    const Held<GMimeParser> parser(g_mime_parser_new_with_stream(stream.get()));
    g_mime_parser_set_persist_stream(parser.get(), TRUE);
    const Held<GMimeMessage> parsed(g_mime_parser_construct_message(parser.get(), nullptr));
    bench::Require(parsed != nullptr, "gmime cannot read");
    Finding finding{{}, folder};
    TakeMailbox(g_mime_message_get_from(parsed.get()), finding.letter.fromName, finding.letter.fromAddress);
    TakeMailbox(g_mime_message_get_to(parsed.get()), finding.letter.toName, finding.letter.toAddress);
    finding.letter.subject = g_mime_message_get_subject(parsed.get());
    g_mime_message_foreach(parsed.get(), Visit, &finding);
    return finding.letter;
}

}  // namespace

const bench::Library bench::kGMime{"gmime", "UTF-8", Write, WriteFile, Read};

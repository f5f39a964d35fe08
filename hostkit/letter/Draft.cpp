#include <algorithm>
#include <glib.h>
#include <hostkit/characters/Words.h>
#include <hostkit/files/InputFile.h>
#include <hostkit/files/PrivateFile.h>
#include <hostkit/letter/Draft.h>
#include <iterator>
#include <memory>

namespace hostkit {

namespace {

// A file has one group, with a key for each value that was given; texts are escaped by GLib's rules for key files. A
// key more is a version more, so that no program drops what it does not know.
constexpr char kGroup[] = "Draft";
constexpr char kVersionKey[] = "Version";
constexpr char kAttachmentsKey[] = "Attachments";
constexpr char kReplaceKey[] = "Replace";
constexpr int kVersion = 1;
constexpr std::size_t kMaxDraftBytes = 2 * kMaxTextBytes;
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

struct Text {
    const char* key;
    std::optional<std::string> Letter::*value;
};
constexpr Text kTexts[] = {
    {"From", &Letter::from},           {"ReplyTo", &Letter::replyTo},
    {"Subject", &Letter::subject},     {"Dear", &Letter::dear},
    {"Greeting", &Letter::greeting},   {"Body", &Letter::body},
    {"Closing", &Letter::closing},     {"Signature", &Letter::signature},
    {"InReplyTo", &Letter::inReplyTo}, {"References", &Letter::references},
};

struct Name {
    const char* key;
    std::string Letter::*value;
};
constexpr Name kNames[] = {{"BodyFile", &Letter::bodyFile}, {"Mailer", &Letter::mailer}};

struct List {
    const char* key;
    std::vector<std::string> Letter::*value;
};
constexpr List kLists[] = {{"To", &Letter::to}, {"Cc", &Letter::cc}, {"Bcc", &Letter::bcc}};

struct Flag {
    const char* key;
    bool Letter::*value;
};
constexpr Flag kFlags[] = {{"SenderBcc", &Letter::senderBcc}, {"UpperReply", &Letter::upperReply}};

using KeyFile = std::unique_ptr<GKeyFile, decltype(&g_key_file_unref)>;
using Chars = std::unique_ptr<char, decltype(&g_free)>;
using Strings = std::unique_ptr<char*, decltype(&g_strfreev)>;

KeyFile NewKeyFile() {
    return {g_key_file_new(), &g_key_file_unref};
}

std::string Valid(std::string_view text) {
    std::string whole;
    for (const char ch : text) {
        if (ch == '\0')
            whole += kReplacement;
        else
            whole += ch;
    }
    return Chars(g_utf8_make_valid(whole.data(), static_cast<gssize>(whole.size())), &g_free).get();
}

void Set(GKeyFile* file, const char* key, const std::string& text) {
    g_key_file_set_string(file, kGroup, key, Valid(text).c_str());
}

void Set(GKeyFile* file, const char* key, const std::vector<std::string>& texts) {
    if (texts.empty()) return;
    std::vector<std::string> valid;
    std::transform(texts.begin(), texts.end(), std::back_inserter(valid), &Valid);
    std::vector<const char*> pointers;
    pointers.reserve(valid.size());
    for (const std::string& text : valid)
        pointers.push_back(text.c_str());
    g_key_file_set_string_list(file, kGroup, key, pointers.data(), pointers.size());
}

// A path is bytes, not text: a URI (RFC 8089) holds any.
std::vector<std::string> UrisOf(const std::vector<std::filesystem::path>& paths) {
    std::vector<std::string> uris;
    for (const std::filesystem::path& path : paths)
        if (const Chars uri(g_filename_to_uri(std::filesystem::absolute(path).c_str(), nullptr, nullptr), &g_free); uri)
            uris.emplace_back(uri.get());
    return uris;
}

// Reads one draft.
class Reader {
public:
    explicit Reader(const std::filesystem::path& path) : m_path(path), m_file(NewKeyFile()) {
        const std::string bytes = ReadWhole(path, kMaxDraftBytes);
        const bool isRead =
            g_key_file_load_from_data(m_file.get(), bytes.data(), bytes.size(), G_KEY_FILE_NONE, nullptr);
        const int version = isRead ? g_key_file_get_integer(m_file.get(), kGroup, kVersionKey, nullptr) : 0;
        if (version > kVersion) Refuse(Words("is a draft of a newer program, and can be opened with that one only"));
        if (version < 1) Refuse(Words("is no draft of a mail"));
    }

    Letter Read() const {
        Letter letter;
        for (const Text& text : kTexts)
            if (Has(text.key)) letter.*text.value = TextAt(text.key);
        for (const Name& name : kNames)
            if (Has(name.key)) letter.*name.value = TextAt(name.key);
        for (const List& list : kLists)
            letter.*list.value = TextsAt(list.key);
        for (const Flag& flag : kFlags)
            letter.*flag.value = IsSet(flag.key);
        if (IsSet(kReplaceKey)) letter.missing = Missing::Replace;
        for (const std::string& uri : TextsAt(kAttachmentsKey)) {
            const Chars path(g_filename_from_uri(uri.c_str(), nullptr, nullptr), &g_free);
            if (!path) RefuseValue(kAttachmentsKey);
            letter.attachments.emplace_back(path.get());
        }
        return letter;
    }

private:
    [[noreturn]] void Refuse(const std::string& fact) const {
        throw Failure(FailureKind::Input, {Field::None, m_path.native()}, fact);
    }
    [[noreturn]] void RefuseValue(const char* key) const {
        Refuse(Words("is a damaged draft: its value '{1}' cannot be read", key));
    }

    bool Has(const char* key) const { return g_key_file_has_key(m_file.get(), kGroup, key, nullptr) != 0; }
    bool IsSet(const char* key) const { return g_key_file_get_boolean(m_file.get(), kGroup, key, nullptr) != 0; }

    std::string TextAt(const char* key) const {
        const Chars text(g_key_file_get_string(m_file.get(), kGroup, key, nullptr), &g_free);
        if (!text) RefuseValue(key);
        return text.get();
    }

    std::vector<std::string> TextsAt(const char* key) const {
        if (!Has(key)) return {};
        gsize count = 0;
        const Strings texts(g_key_file_get_string_list(m_file.get(), kGroup, key, &count, nullptr), &g_strfreev);
        if (!texts) RefuseValue(key);
        return {texts.get(), texts.get() + count};
    }

    const std::filesystem::path& m_path;
    KeyFile m_file;
};

}  // namespace

void SaveDraft(const Letter& letter, const std::filesystem::path& path) {
    const KeyFile file = NewKeyFile();
    g_key_file_set_integer(file.get(), kGroup, kVersionKey, kVersion);
    for (const Text& text : kTexts)
        if (letter.*text.value) Set(file.get(), text.key, *(letter.*text.value));
    for (const Name& name : kNames)
        Set(file.get(), name.key, letter.*name.value);
    for (const List& list : kLists)
        Set(file.get(), list.key, letter.*list.value);
    for (const Flag& flag : kFlags)
        g_key_file_set_boolean(file.get(), kGroup, flag.key, letter.*flag.value);
    g_key_file_set_boolean(file.get(), kGroup, kReplaceKey, letter.missing == Missing::Replace);
    Set(file.get(), kAttachmentsKey, UrisOf(letter.attachments));
    gsize size = 0;
    const Chars bytes(g_key_file_to_data(file.get(), &size, nullptr), &g_free);
    WritePrivateFile(path, {bytes.get(), size});
}

Letter OpenDraft(const std::filesystem::path& path) {
    return Reader(path).Read();
}

}  // namespace hostkit

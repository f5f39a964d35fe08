#include <algorithm>
#include <cerrno>
#include <glib.h>
#include <hostkit/characters/Utf8.h>
#include <hostkit/characters/Words.h>
#include <hostkit/files/InputFile.h>
#include <hostkit/letter/Addresses.h>
#include <hostkit/letter/Envelope.h>
#include <hostkit/settings/ByteCount.h>
#include <hostkit/settings/Settings.h>
#include <map>
#include <memory>
#include <unistd.h>

namespace hostkit {

namespace {

constexpr std::size_t kMaxBytes = 1u << 20;
constexpr std::string_view kBlanks = " \t\r\f";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr char kListSeparator = ';';

std::string MailAddressIn(const std::string& text) {
    return FromCodePage(AddressOf(text, Missing::Refuse, Field::None).GetMailAddress().View());
}

std::string ServerIn(const std::string& text) {
    CMailDoc doc;
    SetServer(text, doc);
    return text;
}

std::string SignatureIn(const std::string& text) {
    (void)ToCodePage(text, Extent::Letter, Missing::Refuse, {});
    return text;
}

// Where the program runs says nothing about a file that names a path.
std::filesystem::path PathIn(const std::string& text) {
    if (text.starts_with("~/")) return std::filesystem::path(g_get_home_dir()) / text.substr(2);
    if (text.starts_with('/')) return text;
    throw Failure(FailureKind::Value, {Field::None, "'" + text + "'"}, Words("give a path that begins with / or ~/"));
}

struct Key {
    const char* group;
    const char* name;
    void (*take)(const std::string& value, Settings& settings);
    bool isList = false;
};
constexpr Key kKeys[] = {
    {"user", "from",
     [](const std::string& value, Settings& settings) {
         settings.own.push_back(MailAddressIn(value));
         settings.from = value;
     }},
    {"user", "own", [](const std::string& value, Settings& settings) { settings.own.push_back(MailAddressIn(value)); },
     true},
    {"user", "reply-to",
     [](const std::string& value, Settings& settings) {
         (void)MailAddressIn(value);
         settings.replyTo = value;
     }},
    {"user", "signature",
     [](const std::string& value, Settings& settings) { settings.signature = SignatureIn(value); }},
    {"send", "server", [](const std::string& value, Settings& settings) { settings.server = ServerIn(value); }},
    {"send", "sendmail", [](const std::string& value, Settings& settings) { settings.program = PathIn(value); }},
    {"send", "copy", [](const std::string& value, Settings& settings) { settings.copy = PathIn(value); }},
    {"send", "limit", [](const std::string& value, Settings& settings) { settings.limit = BytesIn(value); }},
};

// The names of the keys in the group, or of the groups for none.
std::string Known(std::string_view group) {
    std::string names;
    std::string last;
    for (const Key& key : kKeys) {
        const std::string name = group.empty() ? "[" + std::string(key.group) + "]" : key.name;
        if (name == last || (!group.empty() && group != key.group)) continue;
        names += (names.empty() ? "" : ", ") + name;
        last = name;
    }
    return names;
}

std::string_view WithoutLastBlanks(std::string_view text) {
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

std::string_view Trimmed(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    return WithoutLastBlanks(text);
}

// One file on its way into settings, line by line: GKeyFile itself tells no lines, takes unknown keys, and lets the
// last of two have its way. It does what only it can, the values.
class SettingsReader {
public:
    SettingsReader(const std::filesystem::path& file, const std::string& text)
        : m_file(file), m_text(text), m_pKeys(g_key_file_new(), &g_key_file_unref) {}

    Settings Read() {
        std::map<const Key*, std::size_t> lines = Lines();
        if (!lines.empty() &&
            g_key_file_load_from_data(m_pKeys.get(), m_text.data(), m_text.size(), G_KEY_FILE_NONE, nullptr) == 0)
            Refuse(Words("ends what GLib does not take for settings"));
        g_key_file_set_list_separator(m_pKeys.get(), kListSeparator);
        Settings settings;
        for (const auto& [key, line] : lines) {
            m_nLine = line;
            Take(*key, settings);
        }
        return settings;
    }

private:
    // The line of each key that is there.
    std::map<const Key*, std::size_t> Lines() {
        std::map<const Key*, std::size_t> lines;
        std::string group;
        std::string_view rest = m_text;
        while (!rest.empty()) {
            const std::size_t end = std::min(rest.find('\n'), rest.size());
            ++m_nLine;
            Look(rest.substr(0, end), group, lines);
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
        return lines;
    }

    void Look(std::string_view line, std::string& group, std::map<const Key*, std::size_t>& lines) {
        if (!IsUtf8(line) || line.find('\0') != std::string_view::npos)
            Refuse(Words("is not UTF-8; save the file as UTF-8"));
        line = Trimmed(line);
        if (line.empty() || line.front() == '#') return;
        if (line.front() == '[') {
            group = GroupIn(line);
            return;
        }
        const std::size_t equals = line.find('=');
        if (equals == 0 || equals == std::string_view::npos)
            Refuse(Words("is neither [group] nor key = value; a comment begins with #"));
        if (group.empty()) Refuse(Words("stands in front of the first group; the groups are {1}", Known({})));
        const Key& key = KeyNamed(group, Trimmed(line.substr(0, equals)));
        if (const auto first = lines.emplace(&key, m_nLine); !first.second)
            Refuse(Words("{1} stands in line {2} too", key.name, first.first->second));
    }

    std::string GroupIn(std::string_view line) const {
        for (const Key& key : kKeys)
            if (line == "[" + std::string(key.group) + "]") return key.group;
        Refuse(Words("no group is named {1}; the groups are {2}", line, Known({})));
    }

    const Key& KeyNamed(const std::string& group, std::string_view name) const {
        const Key* const key = std::find_if(std::begin(kKeys), std::end(kKeys), [&](const Key& known) {
            return group == known.group && name == known.name;
        });
        if (key == std::end(kKeys))
            Refuse(Words("no key of [{1}] is named {2}; it has {3}", group, name, Known(group)));
        return *key;
    }

    void Take(const Key& key, Settings& settings) const {
        try {
            const std::vector<std::string> values = ValuesOf(key);
            if (values.empty()) throw Failure(FailureKind::Value, {}, Words("is empty; take it out"));
            for (const std::string& value : values) {
                if (value.empty()) throw Failure(FailureKind::Value, {}, Words("is empty; take it out"));
                key.take(value, settings);
            }
        } catch (const Failure& failure) {
            Refuse(failure.Sentence(key.name));
        }
    }

    // A blank at the end of a line is not seen, and no value has any use for one.
    std::vector<std::string> ValuesOf(const Key& key) const {
        GError* error = nullptr;
        if (!key.isList) {
            const std::unique_ptr<char, decltype(&g_free)> value(
                g_key_file_get_string(m_pKeys.get(), key.group, key.name, &error), &g_free);
            CheckValue(error);
            return {std::string(WithoutLastBlanks(value.get()))};
        }
        const std::unique_ptr<char*, decltype(&g_strfreev)> list(
            g_key_file_get_string_list(m_pKeys.get(), key.group, key.name, nullptr, &error), &g_strfreev);
        CheckValue(error);
        std::vector<std::string> values;
        for (char** value = list.get(); *value != nullptr; ++value)
            values.emplace_back(WithoutLastBlanks(*value));
        return values;
    }

    // Takes error.
    static void CheckValue(GError* error) {
        if (error == nullptr) return;
        g_error_free(error);
        throw Failure(FailureKind::Value, {},
                      Words("a backslash begins no other escape than \\n, \\s, \\t, \\r and \\\\"));
    }

    [[noreturn]] void Refuse(const std::string& fact) const {
        throw Failure(FailureKind::Settings, {Field::None, m_file.native(), m_nLine}, fact);
    }

    const std::filesystem::path& m_file;
    const std::string& m_text;
    std::unique_ptr<GKeyFile, decltype(&g_key_file_unref)> m_pKeys;
    std::size_t m_nLine = 0;
};

}  // namespace

std::filesystem::path SettingsFile() {
    return std::filesystem::path(g_get_user_config_dir()) / "mailengine" / "config.ini";
}

Settings ReadSettings() {
    const std::filesystem::path file = SettingsFile();
    const bool isMissing = access(file.c_str(), F_OK) != 0 && (errno == ENOENT || errno == ENOTDIR);
    return isMissing ? Settings() : ReadSettings(file);
}

Settings ReadSettings(const std::filesystem::path& file) {
    std::string text = ReadWhole(file, kMaxBytes);
    if (text.starts_with(kByteOrderMark)) text.erase(0, kByteOrderMark.size());
    return SettingsReader(file, text).Read();
}

}  // namespace hostkit

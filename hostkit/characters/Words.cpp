#include <dlfcn.h>
#include <filesystem>
#include <glib.h>
#include <hostkit/characters/Words.h>
#include <libintl.h>
#include <memory>
#include <string_view>

namespace hostkit {

namespace {

constexpr char kDomain[] = "mailengine";

// Where the translations are: they lie beside the library wherever the tree was put, the build tree too; or else where
// they were to be installed.
std::string FolderOfTranslations() {
    Dl_info library{};
    if (dladdr(kDomain, &library) != 0 && library.dli_fname != nullptr) {
        std::error_code error;
        const std::filesystem::path file = std::filesystem::absolute(library.dli_fname, error);
        std::filesystem::path folder = file.parent_path() / MAILENGINE_LOCALES_FROM_LIBRARY;
        if (std::filesystem::is_directory(folder, error)) return folder.lexically_normal().native();
    }
    return MAILENGINE_LOCALES;
}

// The domain of kit and programs, bound at its first use.
const char* Domain() {
    static const bool isBound = [] {
        bindtextdomain(kDomain, FolderOfTranslations().c_str());
        return bind_textdomain_codeset(kDomain, "UTF-8") != nullptr;
    }();
    (void)isBound;  // without memory for it the sentences stay English
    return kDomain;
}

std::string Filled(std::string_view sentence, std::initializer_list<std::string> values) {
    std::string filled;
    while (!sentence.empty()) {
        const std::size_t open = sentence.find('{');
        filled += sentence.substr(0, open);
        if (open == std::string_view::npos) break;
        sentence.remove_prefix(open);
        const bool isPlace = sentence.size() > 2 && sentence[1] > '0' && sentence[1] <= '9' && sentence[2] == '}';
        const std::size_t place = isPlace ? static_cast<std::size_t>(sentence[1] - '1') : values.size();
        if (place < values.size())
            filled += values.begin()[place];
        else
            filled += '{';
        sentence.remove_prefix(place < values.size() ? 3 : 1);
    }
    return filled;
}

}  // namespace

std::string detail::Translated(const char* sentence, std::initializer_list<std::string> values) {
    if (*sentence == '\0') return "";  // in a catalogue it stands for the catalogue's own header
    return Filled(dgettext(Domain(), sentence), values);
}

std::string detail::Translated(unsigned long count, const char* one, const char* many,
                               std::initializer_list<std::string> values) {
    return Filled(dngettext(Domain(), one, many, count), values);
}

std::string SystemWords(int error) {
    return g_strerror(error);
}

std::string FromLocale(const char* text) {
    const std::unique_ptr<char, decltype(&g_free)> utf8(g_locale_to_utf8(text, -1, nullptr, nullptr, nullptr), &g_free);
    return utf8 ? utf8.get() : text;
}

}  // namespace hostkit

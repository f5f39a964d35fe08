// Words: the sentences of the kit and of the programs on it, in the language of the user. A sentence stands in the
// source in English, and is looked up by gettext in the domain "mailengine" (docs/translations.md); where the locale
// has no translation it stays as it is. The locale is the program's: one that never calls setlocale for LC_MESSAGES
// gets English. Any thread, while none calls setlocale.
#pragma once

#include <hostkit/characters/Export.h>
#include <initializer_list>
#include <string>
#include <type_traits>

namespace hostkit {

namespace detail {

// translation with {1} to {9} replaced by the values, each once; what a value holds stays as it is.
HOSTKIT_API std::string Translated(const char* sentence, std::initializer_list<std::string> values);
HOSTKIT_API std::string Translated(unsigned long count, const char* one, const char* many,
                                   std::initializer_list<std::string> values);

template <class Value>
std::string TextOfValue(const Value& value) {
    if constexpr (std::is_arithmetic_v<Value>)
        return std::to_string(value);
    else
        return std::string(value);
}

}  // namespace detail

// The sentence for the user, in UTF-8 whatever the charset of the locale. The values (UTF-8 texts, paths and whole
// numbers) take the places {1}, {2} and so on, in the order that the language wants: so they belong into the sentence,
// and never behind it. sentence is a literal, which is how scripts/translations finds it.
template <class... Values>
std::string Words(const char* sentence, const Values&... values) {
    return detail::Translated(sentence, {detail::TextOfValue(values)...});
}

// The same for a sentence that counts something: one where English says one, many for any other count. {1} is the
// count, {2} the first value.
template <class... Values>
std::string CountedWords(unsigned long count, const char* one, const char* many, const Values&... values) {
    return detail::Translated(count, one, many, {std::to_string(count), detail::TextOfValue(values)...});
}

// A literal of a table, which Words gets later.
constexpr const char* Marked(const char* sentence) {
    return sentence;
}

// What the system says to a value of errno, in the same language and in UTF-8. It is a part of a sentence. A program
// that sets LC_MESSAGES sets LC_CTYPE too, or libc has no characters for it.
HOSTKIT_API std::string SystemWords(int error);
// What libc says elsewhere (gai_strerror, strsignal), which is in the charset of the locale, in UTF-8.
HOSTKIT_API std::string FromLocale(const char* text);

}  // namespace hostkit

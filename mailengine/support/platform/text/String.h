// CString: a counted byte string, held by value. Its text is code page 932; every length and offset counts
// bytes, and an offset of -1 is "not found". A NUL may stand inside. A null const char* is an empty text
// everywhere. A string belongs to one thread at a time; const operations may run on many.
#pragma once

#include <climits>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include <mailengine/support/platform/base/Export.h>

class MAILENGINE_API CString {
public:
    CString() = default;
    // A copy of the text up to its NUL.
    CString(const char* text) : m_text(ViewOf(text)) {}
    // A copy of exactly length bytes, NUL bytes included. A null pointer or a length below 1 gives an empty string.
    CString(const char* bytes, int length);
    // n times ch; empty if n is below 1.
    CString(char ch, int n) : m_text(n > 0 ? static_cast<std::size_t>(n) : 0, ch) {}
    // All bytes of the view; of a text that may hold NUL bytes.
    explicit CString(std::string_view bytes) : m_text(bytes) {}
    explicit CString(std::string&& bytes) noexcept : m_text(std::move(bytes)) {}

    // Becomes the text up to its NUL.
    CString& operator=(const char* text);

    // The text with a NUL behind it, valid until the string is next changed or destroyed.
    operator const char*() const { return m_text.c_str(); }
    // All bytes, NUL bytes included; valid as long.
    std::string_view View() const { return m_text; }

    // Length in bytes. A text too long for an int gives INT_MAX; View() tells its true size.
    int GetLength() const { return m_text.size() < INT_MAX ? static_cast<int>(m_text.size()) : INT_MAX; }
    // Whether it holds no byte; makes it so.
    bool IsEmpty() const { return m_text.empty(); }
    void Empty() { m_text.clear(); }
    // The byte at index, which must be below the length.
    char GetAt(int index) const { return m_text[static_cast<std::size_t>(index)]; }

    // Appends: a CString or a view with all its bytes, a const char* up to its NUL.
    CString& operator+=(const CString& text);
    CString& operator+=(const char* text);
    CString& operator+=(char ch);
    CString& operator+=(std::string_view bytes);

    // Offset of the first match at or behind start, -1 if there is none or if start lies behind the end. A
    // negative start counts as 0. The search begins at start as at a character, goes on by whole characters and
    // stops at a NUL. Its cost grows with the distance to the match or NUL, not with the rest of the text.
    int Find(char ch) const;
    int Find(const char* text) const { return Find(text, 0); }
    int Find(const char* text, int start) const;
    // Offset of the last character that is ch, -1 if none; the search looks at the text before its first NUL.
    int ReverseFind(char ch) const;

    // The first or last n bytes: all of them if n is not below the length, none if n is negative. A byte count,
    // which may cut a character.
    CString Left(int n) const;
    CString Right(int n) const;
    // The bytes from first on, at most count. A negative first counts as 0, a negative count gives an empty
    // string, and a range past the end gives what is there.
    CString Mid(int first) const { return Mid(first, INT_MAX); }
    CString Mid(int first, int count) const;

    // Removes blank, tab, CR, LF, VT and FF at that end.
    void TrimLeft();
    void TrimRight();

    // Replaces every occurrence from left to right, by whole characters, behind a NUL too. The result is the
    // number of occurrences. An empty old text replaces nothing.
    int Replace(const char* oldText, const char* newText);
    int Replace(char oldChar, char newChar);

    // One argument of Format. A text counts up to its NUL.
    class FormatArgument {
    public:
        FormatArgument(const char* text) : m_text(ViewOf(text)) {}
        FormatArgument(const CString& text) : m_text(ViewOf(text)) {}
        FormatArgument(int value) : m_integer(value) {}
        FormatArgument(unsigned int value) : m_integer(value) {}
        FormatArgument(long value) : m_integer(value) {}
        FormatArgument(unsigned long value) : m_integer(static_cast<std::int64_t>(value)) {}
        FormatArgument(long long value) : m_integer(value) {}
        FormatArgument(unsigned long long value) : m_integer(static_cast<std::int64_t>(value)) {}
        FormatArgument(double value) : m_real(value) {}

    private:
        friend class CString;
        std::string_view m_text;
        std::int64_t m_integer = 0;
        double m_real = 0;
    };

    // Replaces the string by the formatted text: %s, %d, %X, %f with a flag 0 or +, a width and a precision, and %%.
    // %X shows the low 32 bits. A conversion beyond the last argument gives nothing. No locale enters it. The
    // arguments may be parts of this string.
    template <class... Arguments>
    void Format(const char* format, const Arguments&... arguments) {
        FormatList(format, {FormatArgument(arguments)...});
    }

    // A writable buffer of n bytes (none below 1), filled with zeros; the old text is gone. The buffer is the
    // string's, and stays valid until the next other operation on it.
    char* GetBufferSetLength(int n);
    // Ends the use of such a buffer. With -1 the length becomes the distance to the first NUL in it, else length,
    // at most that of the buffer.
    void ReleaseBuffer(int length = -1);

    // Room for bytes in all, so that appending up to there does not move the text.
    void Reserve(std::size_t bytes) { m_text.reserve(bytes); }

    // Compares and joins all bytes; a const char* counts up to its NUL.
    friend bool operator==(const CString& a, const CString& b) { return a.m_text == b.m_text; }
    friend bool operator==(const CString& a, const char* b) { return a.m_text == ViewOf(b); }
    friend CString operator+(const CString& a, const CString& b) { return Join(a.m_text, b.m_text); }
    friend CString operator+(const CString& a, const char* b) { return Join(a.m_text, ViewOf(b)); }
    friend CString operator+(const char* a, const CString& b) { return Join(ViewOf(a), b.m_text); }

private:
    static std::string_view ViewOf(const char* text) {
        return text == nullptr ? std::string_view() : std::string_view(text);
    }
    static CString Join(std::string_view a, std::string_view b);
    void FormatList(const char* format, std::initializer_list<FormatArgument> arguments);

    std::string m_text;
};

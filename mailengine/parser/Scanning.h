// Scanning: walks message text by offsets: field lines, unfolding, empty lines, delimiters. The only code that looks
// at raw message text; all rooms of the parser stand on it. Works on views of a text that outlives them, up to INT_MAX
// bytes; a part is a view of its own, with offsets from its first byte. Offsets count bytes, -1 is "not found", and a
// search stops at a NUL. A line top is the start given or the offset behind a CRLF. One object, one thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <mailengine/support/Wire.h>
#include <mailengine/support/platform/text/String.h>

namespace parser {

inline constexpr std::string_view kCrlf = wire::kCrLf;

inline int LengthOf(std::string_view text) {
    return static_cast<int>(text.size());
}

// The bytes of text that an offset can reach.
std::string_view TextOf(const CString& text);
// Up to the first NUL; what a search is given to look for.
std::string_view NameOf(const CString& text);

// CString::Find, Mid, TrimLeft and TrimRight for views. An empty result of Mid, too, lies in text.
int Find(std::string_view text, std::string_view wanted, int start);
std::string_view Mid(std::string_view text, int first, int count);
std::string_view Mid(std::string_view text, int first);
std::string_view TrimLeft(std::string_view text);
std::string_view TrimRight(std::string_view text);
std::string_view Trim(std::string_view text);

// Whether the bytes of wanted stand at an offset: exactly, or in any case of their letters.
bool StandsAt(std::string_view text, int at, std::string_view wanted);
bool StandsAtIgnoringCase(std::string_view text, int at, std::string_view wanted);

// The search for a field line, its name given with the colon and in any case of its letters: its line top, -1 if there
// is none before the empty line that ends the block, and the last line top that was looked at.
struct FieldLine {
    int top = -1;
    int lastLooked = 0;
};
FieldLine FindFieldLine(std::string_view text, int start, std::string_view nameWithColon);

// A field taken out of its lines: name, colon and value in one line, as written but for the folds.
// QUIRK: unfolding drops the white space of a fold and puts none in its place (RFC 5322 2.2.3 keeps it), so that
// encoded words on two lines become neighbours.
class CUnfolded {
public:
    // Reads the field whose line top is given.
    CUnfolded(std::string_view text, int top);

    // Whether the line has a CRLF; else the field is empty, and what follows it begins where it does.
    bool IsRead() const { return m_bRead; }
    // Valid as long as this object and the text.
    std::string_view Line() const { return m_strJoined.empty() ? m_first : std::string_view(m_strJoined); }
    // The line top behind the field and its continuation lines.
    int Next() const { return m_nNext; }

private:
    std::string_view m_first;
    std::string m_strJoined;  // of more lines than one
    int m_nNext;
    bool m_bRead = false;
};

// The CRLF of the empty line that ends the block around start; the text's last CRLF counts as one.
int FindEmptyLine(std::string_view text, int start);

// A delimiter (RFC 2046 5.1.1): its CRLF, the CRLF that ends its line or the text's length, and whether it closes.
struct Delimiter {
    int at = -1;
    int lineEnd = 0;
    bool last = false;
};

// The delimiters of one multipart. A search that starts between the start and the result of the one before it costs
// nothing.
class CDelimiters {
public:
    // boundary without its leading "--"; it is copied.
    CDelimiters(std::string_view text, std::string_view boundary);

    std::string_view Boundary() const;

    // Offset of the first delimiter at or behind start, -1 if none.
    int FindTop(int start);
    // The same, with its line. false: found.at is -1, the rest of found stays.
    bool FindNext(int start, Delimiter& found);
    // Where the line of the delimiter at that offset ends.
    int LineEnd(int delimiter) const;

private:
    void Search(int start);
    int SearchOverlapping(int start);
    void MakeBorders();

    std::string_view m_text;
    std::string m_pattern;
    int m_nFrom = 0;
    int m_nFound = -2;  // -2: no search yet
    // A decoded boundary can hold CRLFs, so that its delimiters overlap. Then the search keeps how much of the
    // pattern stands before m_nScanned, and takes each byte once.
    std::vector<std::uint32_t> m_borders;
    std::size_t m_nMatched = 0;
    int m_nScanned = 0;
    bool m_bEndsInLeadByte = false;
};

}  // namespace parser

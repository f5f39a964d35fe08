#include <algorithm>
#include <string>
#include <string_view>

#include <mailengine/transport/TransparencyStream.h>

namespace {

constexpr std::size_t kPieceBytes = 4096;

// One text on its way to the target. Nothing but insertions and a byte left out at its top make the difference, and a
// text without any goes to the target as it is, in one call and without a copy.
class CEdit {
public:
    CEdit(COutputStream& target, std::string_view text) : m_target(target), m_text(text) {}

    void LeaveOutTop() { m_taken = 1; }
    void Insert(std::size_t at, char ch) {
        Collect(m_text.substr(m_taken, at - m_taken));
        Collect(std::string_view(&ch, 1));
        m_taken = at;
    }
    // Writes what is left. The result is that of all writes.
    int End() {
        if (m_taken == 0 && m_piece.empty()) return m_target.WriteString(m_text.data());
        Collect(m_text.substr(m_taken));
        Write();
        return m_result;
    }

private:
    void Collect(std::string_view bytes) {
        while (!bytes.empty()) {
            if (m_piece.size() == kPieceBytes) Write();
            const std::string_view part = bytes.substr(0, kPieceBytes - m_piece.size());
            m_piece += part;
            bytes.remove_prefix(part.size());
        }
    }
    void Write() {
        if (!m_target.WriteString(m_piece.c_str())) m_result = 0;
        m_piece.clear();
    }

    COutputStream& m_target;
    std::string_view m_text;  // with a NUL behind it
    std::size_t m_taken = 0;  // bytes of it that are in the piece, or were
    std::string m_piece;
    int m_result = 1;
};

// Finds the line ends of a text one after the other, each byte looked at twice at most.
class CLineEnds {
public:
    explicit CLineEnds(std::string_view text) : m_text(text) {}

    // Offset of the first CR or LF at or behind from, which never decreases; the text's size if there is none.
    std::size_t Next(std::size_t from) {
        if (from == 0 || m_cr < from) m_cr = Find('\r', from);
        if (from == 0 || m_lf < from) m_lf = Find('\n', from);
        return std::min(m_cr, m_lf);
    }

private:
    std::size_t Find(char ch, std::size_t from) const { return std::min(m_text.find(ch, from), m_text.size()); }

    std::string_view m_text;
    std::size_t m_cr = 0;
    std::size_t m_lf = 0;
};

}  // namespace

int CTransparencyStream::Open() {
    m_bLineTop = 1;
    m_bPassLf = 0;
    return m_target.Open();
}

int CTransparencyStream::WriteString(const char* text) {
    const std::string_view bytes(text == nullptr ? "" : text);
    CEdit edit(m_target, bytes);
    CLineEnds ends(bytes);
    std::size_t at = 0;
    if (m_bPassLf && bytes.starts_with('\n')) {
        edit.LeaveOutTop();
        at = 1;
    }
    if (!bytes.empty()) m_bPassLf = 0;
    while (at < bytes.size()) {
        if (m_bLineTop && bytes[at] == '.') edit.Insert(at, '.');
        const std::size_t end = ends.Next(at);
        m_bLineTop = end < bytes.size();
        if (!m_bLineTop) break;
        at = end + 1;
        if (bytes[end] == '\n') {
            edit.Insert(end, '\r');
        } else if (at < bytes.size() && bytes[at] == '\n') {
            ++at;
        } else {
            edit.Insert(at, '\n');
            m_bPassLf = at == bytes.size();
        }
    }
    return edit.End();
}

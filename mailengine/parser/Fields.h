// Fields: header fields read to their values (RFC 5322 2.2): one by its name, the Content-Type of an entity, and those
// that reach a document. Offsets as in Scanning.h, values as in Values.h. Stateless but for CEntity; any thread.
#pragma once

#include <optional>
#include <string_view>

#include <mailengine/parser/Scanning.h>
#include <mailengine/parser/Values.h>
#include <mailengine/support/platform/text/String.h>

namespace parser {

// Reads the field whose line top is given and whose name has so many bytes: unfolded, trimmed and decoded. next takes
// the line top behind it. false: the line has no CRLF; value stays, and next takes the offset given.
bool ReadField(std::string_view text, int top, std::size_t nameLength, CString& value, int& next);
// Finds the field in the block around start and reads it. false: not found, and value and next stay; or as ReadField.
bool FindField(std::string_view text, int start, std::string_view nameWithColon, CString& value, int& next);

// Content-Transfer-Encoding, or 7bit, of the block around cur, which moves behind the field if there is one.
CString TakeTransferEncoding(std::string_view text, int& cur);

// The text of an entity that is being walked, and the Content-Type field found in it last: in parts without an empty
// line many searches lead to one field, or to none, over the same lines. Searches start at a line top or a CRLF.
class CEntity {
public:
    explicit CEntity(std::string_view text) : m_text(text) {}

    std::string_view Text() const { return m_text; }
    int Length() const { return LengthOf(m_text); }

    // Media type and parameters by the Content-Type field of the block around start; text/plain in us-ascii where
    // there is none. next takes the line top behind the field, and stays where there is none. The result holds until
    // the next call.
    const ContentType& GetContentType(int start, int& next);
    // The same for a walk that asks once: its parameters, which can be as long as the text, are not kept here too.
    ContentType TakeContentType(int start, int& next);

private:
    std::string_view m_text;
    ContentType m_type;
    FieldLine m_line;
    int m_nFrom = -1;  // where the search for m_line began; -1: none yet
    int m_nNext = 0;
    bool m_bRead = false;  // m_type and m_nNext are those of the field at m_line
};

// The values of the header fields that reach a document; nothing where the field is not there or cannot be read.
struct Header {
    std::optional<CString> from, to, cc;  // AppendAddresses cuts these
    std::optional<CString> messageId, references, subject, date;
};
// Reads them from the lines whose top does not lie behind bodyTop; the first field of a name counts.
Header ReadHeader(std::string_view text, int bodyTop);
// The same for the subject alone.
CString ReadSubjectField(std::string_view text, int bodyTop);

}  // namespace parser

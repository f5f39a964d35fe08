// Values: what field lines and parts mean once they are cut out: encoded words, media types, parameters, transfer
// encodings. Stateless but for CEntity; any thread.
#pragma once

#include <string_view>

#include <mailengine/parser/Scanning.h>
#include <mailengine/support/platform/text/String.h>

namespace parser {

struct ContentType {
    CString type = "text/plain";
    CString parameters = "charset=us-ascii";
};

// Whether a media type, subtype included, is the one named.
bool IsType(const CString& type, std::string_view name);

// The text of an entity that is being walked, and the Content-Type field found in it last: in parts without an empty
// line many searches lead to one field, or to none, over the same lines. Searches start at a line top or a CRLF.
class CEntity {
public:
    explicit CEntity(std::string_view text) : m_text(text) {}

    std::string_view Text() const { return m_text; }
    int Length() const { return LengthOf(m_text); }

    // CEMailPerser::GetContentType. The result holds until the next call.
    const ContentType& GetContentType(int start, int& next);

private:
    std::string_view m_text;
    ContentType m_type;
    FieldLine m_line;
    int m_nFrom = -1;  // where the search for m_line began; -1: none yet
    int m_nNext = 0;
    bool m_bRead = false;  // m_type and m_nNext are those of the field at m_line
};

// CEMailPerser::GetAttrValue, GetAttrValue_MultiLine and DecodeFieldValue.
CString GetParameter(std::string_view parameters, std::string_view name);
CString GetNumberedParameter(std::string_view parameters, std::string_view name);
CString DecodeFieldValue(std::string_view value);

enum class Encoding { kBase64, kQuotedPrintable, kHex, kPlain };

// The transfer encoding of that name, in an encoded word or a Content-Transfer-Encoding field.
Encoding EncodingOf(std::string_view name);
bool IsJapaneseCharset(std::string_view charset);

// Whether Decode refuses text in a buffer of its length plus 1.
bool RefusesDecoding(std::string_view text, Encoding encoding);

// Decodes text to bytes, which replace out; only a refusal gives 0, and then out is empty.
int DecodeBytes(std::string_view text, Encoding encoding, CString& out);
// DecodeBytes, then the conversion to code page 932 if charset is ISO-2022-JP.
int DecodeData(std::string_view text, Encoding encoding, std::string_view charset, CString& out);
// DecodeData, up to the first NUL: a text.
int DecodeText(std::string_view text, Encoding encoding, std::string_view charset, CString& out);

}  // namespace parser

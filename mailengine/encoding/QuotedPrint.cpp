#include <mailengine/encoding/HexEscapes.h>
#include <mailengine/encoding/QuotedPrint.h>

int CQuotedPrint::Decode(const CString& text, unsigned char* buffer, unsigned int capacity, unsigned int& written) {
    return hexescapes::Decode<hexescapes::QuotedPrintable>(text, buffer, capacity, written);
}

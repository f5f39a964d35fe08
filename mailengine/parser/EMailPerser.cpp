// Every operation of CEMailPerser in terms of the rooms below it, which know views and structures where the interface
// has strings, integers and pointers that may be null.
#include <algorithm>
#include <climits>
#include <cstring>

#include <mailengine/encoding/Language.h>
#include <mailengine/parser/EMailPerser.h>
#include <mailengine/parser/Fields.h>
#include <mailengine/parser/Filling.h>
#include <mailengine/parser/TransferDecoder.h>
#include <mailengine/parser/Walk.h>

namespace {

using parser::NameOf;
using parser::TextOf;

// An offset that the caller may not want, in and out.
class COptionalOffset {
public:
    explicit COptionalOffset(int* offset) : m_pOffset(offset), m_nOffset(offset != nullptr ? *offset : 0) {}
    ~COptionalOffset() {
        if (m_pOffset != nullptr) *m_pOffset = m_nOffset;
    }
    COptionalOffset(const COptionalOffset&) = delete;
    COptionalOffset& operator=(const COptionalOffset&) = delete;
    operator int&() { return m_nOffset; }

private:
    int* m_pOffset;
    int m_nOffset;
};

int Perse(const CString& text, const char* tempPath, CMailDoc& document, int bReply, MailFault* fault) {
    if (text.View().size() <= INT_MAX) return parser::FillDocument(text.View(), tempPath, bReply != 0, document, fault);
    return parser::CFaultLog(text.View(), fault).Record(MailFault::Kind::kTooLong, text.View());
}

// Takes over a value that was found.
void Take(std::optional<CString>& found, CString& value) {
    if (found) value = std::move(*found);
}

void Append(std::optional<CString>& found, CStringArray& list) {
    if (found) parser::AppendAddresses(std::move(*found), list);
}

// What the operations of the walk take and give by argument.
struct Walked {
    const CString& text;
    const char* tempPath;
    CString* body;
    CStringArray& fileNames;
    CStringArray* filePaths;
    int& bodyTop;
    int& bodyEnd;
};

template <class Run>
int RunWalk(const Walked& walked, Run run) {
    parser::CEntity entity(TextOf(walked.text));
    parser::CNewFiles files(walked.tempPath);
    parser::CFaultLog noFaults(entity.Text(), nullptr);
    parser::Range range{walked.bodyTop, walked.bodyEnd};
    const parser::Findings findings{walked.body, walked.fileNames, walked.filePaths, files, noFaults};
    const int result = run(entity, findings, range);
    walked.bodyTop = range.top;
    walked.bodyEnd = range.end;
    return result;
}

// Runs the walk of one entity. An empty boundary is no multipart around it.
template <class Walk>
int RunWalk(const Walked& walked, int start, const CString& parameters, const CString& boundary, Walk walk) {
    return RunWalk(walked, [&](parser::CEntity& entity, const parser::Findings& findings, parser::Range& range) {
        parser::CDelimiters delimiters(entity.Text(), NameOf(boundary));
        return walk({entity, start, parameters, boundary.IsEmpty() ? nullptr : &delimiters}, findings, range);
    });
}

}  // namespace

int CEMailPerser::Perse(const CString& text, const char* tempPath, CMailDoc& document, int bReply) {
    return ::Perse(text, tempPath, document, bReply, nullptr);
}

int CEMailPerser::Perse(const CString& text, const char* tempPath, CMailDoc& document, int bReply, MailFault& fault) {
    fault = MailFault();
    return ::Perse(text, tempPath, document, bReply, &fault);
}

int CEMailPerser::GetSubject(const CString& text, CString& subject) {
    if (text.View().size() > INT_MAX) return 0;
    parser::CFaultLog noFaults(text.View(), nullptr);
    return parser::ReadSubject(text.View(), 0, noFaults, subject);
}

int CEMailPerser::PerseHeaderFields(const CString& text, int bodyTop, int, CStringArray& from, CStringArray& to,
                                    CStringArray& cc, CString& messageId, CString& references, CString& subject,
                                    CString& date) {
    parser::Header header = parser::ReadHeader(TextOf(text), bodyTop);
    Append(header.from, from);
    Append(header.to, to);
    Append(header.cc, cc);
    Take(header.messageId, messageId);
    Take(header.references, references);
    Take(header.subject, subject);
    Take(header.date, date);
    return 1;
}

void CEMailPerser::MakeOriginalSummary(const CStringArray& from, const CStringArray& to, const CStringArray& cc,
                                       const CString& subject, const CString& date, const CStringArray& fileNames,
                                       CString& summary) {
    parser::AppendSummary({from, to, cc, subject, date, fileNames}, summary);
}

int CEMailPerser::FindTopOfLine(const CString& text, int start, const CString& fieldName) {
    return parser::FindFieldLine(TextOf(text), start, NameOf(fieldName)).top;
}

int CEMailPerser::PerseFieldValue(const CString& text, int topOfLine, const char* fieldName, CString& value,
                                  int* next) {
    COptionalOffset behind(next);
    return parser::ReadField(TextOf(text), topOfLine, CString(fieldName).View().size(), value, behind) ? 1 : 0;
}

int CEMailPerser::FindField(const CString& text, int start, const char* fieldName, CString& value, int* next) {
    COptionalOffset behind(next);
    return parser::FindField(TextOf(text), start, (CString(fieldName) + ":").View(), value, behind) ? 1 : 0;
}

int CEMailPerser::FindEmptyLine(const CString& text, int start) {
    return parser::FindEmptyLine(TextOf(text), start);
}

int CEMailPerser::FindNextBoundary(const CString& text, int start, const CString& boundary, int& delimiter,
                                   int& lineEnd, int* last) {
    parser::Delimiter found;
    const bool there = parser::CDelimiters(TextOf(text), NameOf(boundary)).FindNext(start, found);
    delimiter = found.at;
    if (!there) return 0;
    lineEnd = found.lineEnd;
    if (last != nullptr) *last = found.last ? 1 : 0;
    return 1;
}

int CEMailPerser::GetContentType(const CString& text, int start, CString& type, CString& parameters, int* next) {
    COptionalOffset behind(next);
    parser::CEntity entity(TextOf(text));
    const parser::ContentType& found = entity.GetContentType(start, behind);
    type = found.type;
    parameters = found.parameters;
    return 1;
}

CString CEMailPerser::GetAttrValue(const CString& parameters, const char* name) {
    return parser::GetParameter(TextOf(parameters), CString(name).View());
}

CString CEMailPerser::GetAttrValue_MultiLine(const CString& parameters, const char* name) {
    return parser::GetNumberedParameter(TextOf(parameters), CString(name).View());
}

CString CEMailPerser::DecodeFieldValue(const CString& value) {
    return parser::DecodeFieldValue(TextOf(value));
}

int CEMailPerser::Decode(const CString& text, const CString& encoding, const CString& charset, unsigned char* buffer,
                         unsigned int size, unsigned int& outputSize) {
    outputSize = 0;
    if (buffer == nullptr) return 0;
    std::fill_n(buffer, size, static_cast<unsigned char>(0));
    if (!parser::CTransferDecoder(encoding.View()).DecodeWhole(text, buffer, size, outputSize)) return 0;
    if (parser::IsJapaneseCharset(charset.View())) {
        CString converted;
        CLanguage::JIS_SJIS(reinterpret_cast<const char*>(buffer), outputSize, converted);
        std::fill_n(buffer, size, static_cast<unsigned char>(0));
        outputSize = std::min(static_cast<unsigned int>(converted.View().size()), size);
        std::memcpy(buffer, converted.View().data(), outputSize);
    }
    if (outputSize < size) buffer[outputSize] = 0;
    return 1;
}

int CEMailPerser::PerseAddressField(const CString& text, int topOfLine, const char* fieldName, CStringArray& list) {
    CString value;
    if (!PerseFieldValue(text, topOfLine, fieldName, value, nullptr)) return 0;
    parser::AppendAddresses(std::move(value), list);
    return 1;
}

int CEMailPerser::NextAddress(const CString& list, int start, CString& item) {
    std::string_view found;
    const int next = parser::NextAddress(TextOf(list), start, found);
    if (next != -1) item = CString(found);
    return next;
}

int CEMailPerser::PerseMime(const CString& text, int start, const char* tempPath, CString& body,
                            CStringArray& fileNames, CStringArray* filePaths, int& bodyTop, int& bodyEnd) {
    return RunWalk({text, tempPath, &body, fileNames, filePaths, bodyTop, bodyEnd},
                   [&](parser::CEntity& entity, const parser::Findings& findings, parser::Range& range) {
                       return parser::WalkEntity(entity, start, findings, range);
                   });
}

int CEMailPerser::PerseRelated(const CString& text, int start, const char* tempPath, const CString& parameters,
                               CString& body, CStringArray& fileNames, CStringArray* filePaths, int& bodyTop,
                               int& bodyEnd) {
    return RunWalk({text, tempPath, &body, fileNames, filePaths, bodyTop, bodyEnd}, start, parameters, "",
                   parser::WalkRelated);
}

int CEMailPerser::PerseMixed(const CString& text, int start, const char* tempPath, const CString& parameters,
                             CString& body, CStringArray& fileNames, CStringArray* filePaths, int& bodyTop,
                             int& bodyEnd) {
    return RunWalk({text, tempPath, &body, fileNames, filePaths, bodyTop, bodyEnd}, start, parameters, "",
                   parser::WalkMixed);
}

int CEMailPerser::PerseAlternative(const CString& text, int start, const CString& parameters, CString& body,
                                   int& bodyTop, int& bodyEnd) {
    CStringArray noNames;
    return RunWalk({text, nullptr, &body, noNames, nullptr, bodyTop, bodyEnd}, start, parameters, "",
                   parser::WalkAlternative);
}

int CEMailPerser::PerseBody(const CString& text, int start, const CString& parameters, const CString& boundary,
                            CString& body, int& bodyTop, int& bodyEnd) {
    CStringArray noNames;
    return RunWalk({text, nullptr, &body, noNames, nullptr, bodyTop, bodyEnd}, start, parameters, boundary,
                   parser::WalkBody);
}

int CEMailPerser::PerseFile(const CString& text, int start, const char* tempPath, const CString& parameters,
                            const CString& boundary, CStringArray& fileNames, CStringArray* filePaths, int& bodyTop,
                            int& bodyEnd) {
    const CString name = parser::GetFileName(TextOf(parameters));
    if (name.IsEmpty()) return 0;
    return RunWalk({text, tempPath, nullptr, fileNames, filePaths, bodyTop, bodyEnd}, start, parameters, boundary,
                   [&](const parser::Place& place, const parser::Findings& findings, parser::Range& range) {
                       return parser::ExtractFile(place, name, findings, range);
                   });
}

int CEMailPerser::PerseAttachedMail(const CString& text, int start, const char* tempPath, const CString& parameters,
                                    const CString& boundary, CStringArray& fileNames, CStringArray* filePaths,
                                    int& bodyTop, int& bodyEnd) {
    return RunWalk({text, tempPath, nullptr, fileNames, filePaths, bodyTop, bodyEnd}, start, parameters, boundary,
                   parser::ExtractMail);
}

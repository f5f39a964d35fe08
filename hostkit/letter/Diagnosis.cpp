#include <climits>
#include <hostkit/characters/MailText.h>
#include <hostkit/letter/Diagnosis.h>

#include <mailengine/support/platform/text/StringArray.h>

namespace hostkit {

namespace {

constexpr int kMaxDepth = 100;  // where the parser stops too

std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& ch : lower) {
        if (ch >= 'A' && ch <= 'Z') ch = static_cast<char>(ch - 'A' + 'a');
    }
    return lower;
}

std::string Quoted(const CString& text) {
    constexpr int kShownBytes = 80;
    const bool isLong = text.GetLength() > kShownBytes;
    return "'" + TextOf(text.Left(kShownBytes).View()) + (isLong ? "...'" : "'");
}

// Searches stop at a NUL, so that an end behind it is not seen.
std::string HintOfNul(const CString& text) {
    return text.View().find('\0') == std::string_view::npos ? ""
                                                            : "; it holds a NUL byte, behind which nothing is read";
}

CString Slice(const CString& text, int from, int to) {
    return text.Mid(from, to - from);
}

// Whether an empty line stands behind the fields of a part, which begins with the CRLF of its delimiter.
bool HasData(const CString& part) {
    return part.View().find("\r\n\r\n") != std::string_view::npos;
}

}  // namespace

std::string Diagnosis::FaultOf(const CString& mail, const CString& workFolder, const std::filesystem::path* target) {
    if (mail.IsEmpty()) return "is empty";
    std::string fault = MailFault(mail, 0);
    if (fault.empty()) fault = ExtractionFault(mail, workFolder);
    if (!fault.empty()) return "cannot be read as a mail: " + fault;
    if (target != nullptr) return "an attachment cannot be written into " + target->native();
    return "cannot be read as a mail: a part is damaged";
}

std::string Diagnosis::MailFault(const CString& mail, int depth) {
    if (depth > kMaxDepth) return "its parts nest deeper than can be read";
    CString version;
    int next = 0;
    if (!FindField(mail, 0, "MIME-Version", version, &next)) return "it has no MIME-Version 1.0" + HintOfNul(mail);
    if (version.View() != "1.0") return "its MIME-Version is " + Quoted(version) + ", not 1.0";
    return EntityFault(mail, next, depth);
}

std::string Diagnosis::EntityFault(const CString& entity, int start, int depth) {
    if (depth > kMaxDepth) return "its parts nest deeper than can be read";
    CString type;
    CString parameters;
    int next = start;
    GetContentType(entity, start, type, parameters, &next);
    const std::string lower = Lower(type.View());
    if (lower == "multipart/mixed") return MultipartFault(entity, next, parameters, Kind::Mixed, depth);
    if (lower == "multipart/alternative") return MultipartFault(entity, next, parameters, Kind::Alternative, depth);
    if (lower == "multipart/related") return MultipartFault(entity, next, parameters, Kind::Related, depth);
    if (lower == "text/plain") return TextFault(entity, next, parameters);
    if (lower.starts_with("image") && !HasName(parameters)) return "an image (" + lower + ") has no name";
    return "";
}

std::string Diagnosis::MultipartFault(const CString& entity, int start, const CString& parameters, Kind kind,
                                      int depth) {
    const CString boundary = GetAttrValue(parameters, "boundary");
    if (boundary.IsEmpty()) return "the boundary parameter of a multipart is missing";
    int partTop = start;
    for (int number = 0;; ++number) {
        int delimiter = -1;
        int lineEnd = partTop;
        int last = 0;
        if (!FindNextBoundary(entity, partTop, boundary, delimiter, lineEnd, &last)) {
            return (number == 0 ? "no delimiter of its boundary " : "the closing delimiter is missing of boundary ") +
                   Quoted(boundary) + (number == 0 ? " is there" : "") + HintOfNul(entity);
        }
        if (number > 0) {
            const std::string fault = PartFault(Slice(entity, partTop, delimiter), kind, last != 0, depth + 1);
            if (!fault.empty()) return "part " + std::to_string(number) + ": " + fault;
        }
        if (last != 0) return "";
        partTop = lineEnd;
    }
}

std::string Diagnosis::PartFault(const CString& part, Kind kind, bool isLast, int depth) {
    switch (kind) {
        case Kind::Mixed:
            return MixedPartFault(part, isLast, depth);
        case Kind::Related:
            return EntityFault(part, 0, depth);
        case Kind::Alternative:
            break;
    }
    CString type;
    CString parameters;
    int next = 0;
    GetContentType(part, 0, type, parameters, &next);
    return Lower(type.View()) == "text/plain" ? TextFault(part, next, parameters) : "";
}

std::string Diagnosis::MixedPartFault(const CString& part, bool isLast, int depth) {
    CString type;
    CString parameters;
    int next = 0;
    GetContentType(part, 0, type, parameters, &next);
    const std::string lower = Lower(type.View());
    if (lower == "multipart/alternative") return MultipartFault(part, next, parameters, Kind::Alternative, depth);
    if (lower == "text/plain" && !HasName(parameters)) return TextFault(part, next, parameters);
    if (lower != "message/rfc822") return FileFault(part, type, parameters, isLast);
    const int emptyLine = FindEmptyLine(part, next);
    if (emptyLine == -1 || !HasData(part)) return "the attached mail is empty";
    const std::string fault = MailFault(part.Mid(emptyLine + 2), depth);
    return fault.empty() ? "" : "the attached mail cannot be read: " + fault;
}

std::string Diagnosis::TextFault(const CString& text, int start, const CString& parameters) {
    CString body;
    int top = -1;
    int end = -1;
    return PerseBody(text, start, parameters, "", body, top, end) ? "" : "a text cannot be decoded";
}

// Behind a part that is not the last, the data begins at an empty line further on: that is no fault to the parser.
std::string Diagnosis::FileFault(const CString& part, const CString& type, const CString& parameters, bool isLast) {
    if (!HasName(parameters)) return "a part of type " + Quoted(type) + " in a multipart/mixed has no name";
    if (HasData(part) || !isLast) return "";
    return part.View().ends_with("\r\n") ? "the last attachment is empty, and its empty line belongs to the delimiter"
                                         : "an attachment has no empty line in front of its data";
}

bool Diagnosis::HasName(const CString& parameters) {
    return !GetAttrValue(parameters, "name").IsEmpty() || !GetAttrValue_MultiLine(parameters, "name").IsEmpty();
}

std::string Diagnosis::ExtractionFault(const CString& mail, const CString& workFolder) {
    CString version;
    CString body;
    CStringArray names;
    CStringArray paths;
    int next = 0;
    int top = -1;
    int end = -1;
    FindField(mail, 0, "MIME-Version", version, &next);
    if (PerseMime(mail, next, workFolder, body, names, &paths, top, end)) return "";
    if (names.GetSize() == 0 || names.GetSize() == paths.GetSize()) return "a part is damaged";
    return "the attachment " + Quoted(names.GetAt(names.GetSize() - 1)) +
           " has no end, cannot be decoded, or has a name that no file can have";
}

}  // namespace hostkit

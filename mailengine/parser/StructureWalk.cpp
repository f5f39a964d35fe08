#include <optional>

#include <mailengine/parser/EMailPerser.h>
#include <mailengine/parser/Walk.h>
#include <mailengine/support/platform/text/Characters.h>

namespace parser {
namespace {

constexpr std::string_view kTransferEncoding = "Content-Transfer-Encoding:";

int WalkMixedPart(CEntity& entity, int& cur, CDelimiters& delimiters, const Findings& findings) {
    const ContentType part = entity.GetContentType(cur, cur);
    Range range{cur, cur};
    int result = 0;
    if (IsType(part.type, "multipart/alternative")) {
        result = WalkAlternative(entity, cur, part.parameters, findings.body, range);
    } else if (IsType(part.type, "text/plain")) {
        const int names = findings.fileNames.GetSize();
        result = ExtractFile(entity, cur, part.parameters, &delimiters, findings, range);
        const bool isText = result == 0 && findings.fileNames.GetSize() == names;
        if (isText) result = WalkBody(entity, cur, part.parameters, &delimiters, findings.body, range);
    } else if (IsType(part.type, "message/rfc822")) {
        result = ExtractMail(entity, cur, part.parameters, &delimiters, findings, range);
    } else {
        result = ExtractFile(entity, cur, part.parameters, &delimiters, findings, range);
    }
    cur = range.end;
    return result;
}

// One part of a multipart/related, which is an entity of any type. The first text that is not empty is the body.
int WalkRelatedPart(std::string_view text, const Findings& findings) {
    if (findings.depth >= kMaxNesting) return 0;
    CString body;
    const Findings inner{findings.body != nullptr ? &body : nullptr, findings.fileNames, findings.filePaths,
                         findings.files, findings.depth + 1};
    CEntity entity(text);
    Range unused;
    const int result = WalkEntity(entity, 0, inner, unused);
    if (inner.body != nullptr && findings.body->IsEmpty()) *findings.body = std::move(body);
    return result;
}

struct EntityBody {
    std::string_view text;
    CString encoding = "7bit";
    int offset = -1;  // of text in the entity; -1: the entity has no body
};

// Takes the text of an entity, from behind its Content-Type on, apart.
EntityBody FindBody(std::string_view entity) {
    EntityBody body;
    if (entity.starts_with(kCrlf)) {  // Content-Type was the last field
        body.offset = 2;
    } else {
        int behind = 0;
        FindField(entity, 0, kTransferEncoding, body.encoding, behind);
        const int emptyLine = FindEmptyLine(entity, behind);
        if (emptyLine != -1) body.offset = emptyLine + 2;
    }
    if (body.offset != -1) body.text = Mid(entity, body.offset);
    return body;
}

int DecodeBody(const EntityBody& found, const CString& charset, CString* body) {
    const Encoding encoding = EncodingOf(found.encoding.View());
    if (body == nullptr) return RefusesDecoding(found.text, encoding) ? 0 : 1;
    return DecodeText(found.text, encoding, charset.View(), *body);
}

}  // namespace

int WalkEntity(CEntity& entity, int start, const Findings& findings, Range& range) {
    int cur = start;
    const ContentType type = entity.GetContentType(start, cur);
    if (IsType(type.type, "multipart/related")) return WalkRelated(entity, cur, type.parameters, findings, range);
    if (IsType(type.type, "multipart/mixed")) return WalkMixed(entity, cur, type.parameters, findings, range);
    if (IsType(type.type, "multipart/alternative"))
        return WalkAlternative(entity, cur, type.parameters, findings.body, range);
    if (IsType(type.type, "text/plain")) return WalkBody(entity, cur, type.parameters, nullptr, findings.body, range);
    if (StandsAtIgnoringCase(type.type.View(), 0, "image"))
        return ExtractFile(entity, cur, type.parameters, nullptr, findings, range);
    range = {cur, entity.Length()};
    return 1;
}

int WalkMixed(CEntity& entity, int start, const CString& parameters, const Findings& findings, Range& range) {
    const CString boundary = GetParameter(parameters.View(), "boundary");
    if (boundary.IsEmpty()) return 0;
    CDelimiters delimiters(entity.Text(), boundary.View());
    Delimiter delimiter{-1, start, false};
    int cur = start;
    for (bool first = true;; first = false) {
        const bool found = delimiters.FindNext(cur, delimiter);
        if (!found || delimiter.last) {
            range.end = delimiter.lineEnd;
            return found ? 1 : 0;
        }
        cur = delimiter.lineEnd;
        if (first) range.top = delimiter.at;
        if (!WalkMixedPart(entity, cur, delimiters, findings)) return 0;
    }
}

int WalkAlternative(CEntity& entity, int start, const CString& parameters, CString* body, Range& range) {
    const CString boundary = GetParameter(parameters.View(), "boundary");
    if (boundary.IsEmpty()) return 0;
    CDelimiters delimiters(entity.Text(), boundary.View());
    Delimiter delimiter{-1, start, false};
    std::optional<CString> chosen;  // the parameters of the text part
    int textOffset = start;
    bool found = true;
    for (bool first = true; (found = delimiters.FindNext(delimiter.lineEnd, delimiter)) && !delimiter.last;
         first = false) {
        if (first) range.top = delimiter.at;
        if (chosen) continue;
        textOffset = delimiter.lineEnd;
        const ContentType& part = entity.GetContentType(delimiter.lineEnd, textOffset);
        if (IsType(part.type, "text/plain")) chosen = part.parameters;
    }
    range.end = delimiter.lineEnd;
    if (!found) return 0;
    if (!chosen) return 1;
    Range unused;
    return WalkBody(entity, textOffset, *chosen, &delimiters, body, unused);
}

int WalkRelated(CEntity& entity, int start, const CString& parameters, const Findings& findings, Range& range) {
    const CString boundary = GetParameter(parameters.View(), "boundary");
    if (boundary.IsEmpty()) return 0;
    CDelimiters delimiters(entity.Text(), boundary.View());
    Delimiter delimiter{-1, start, false};
    for (bool first = true;; first = false) {
        const int partTop = delimiter.lineEnd;
        const bool found = delimiters.FindNext(partTop, delimiter);
        range.end = delimiter.lineEnd;
        if (!found) return 0;
        if (!first && !WalkRelatedPart(Mid(entity.Text(), partTop, delimiter.at - partTop), findings)) return 0;
        if (delimiter.last) return 1;
        if (first) range.top = delimiter.at;
    }
}

int WalkBody(CEntity& entity, int start, const CString& parameters, CDelimiters* delimiters, CString* body,
             Range& range) {
    const int end = delimiters == nullptr ? entity.Length() : delimiters->FindTop(start);
    if (end != -1) range.end = end;
    const EntityBody found = FindBody(Mid(entity.Text(), start, end - start));
    range.top = found.offset == -1 ? range.end : start + found.offset;
    if (body != nullptr) body->Empty();
    if (end == -1) return 0;
    return found.text.empty() ? 1 : DecodeBody(found, GetParameter(parameters.View(), "charset"), body);
}

}  // namespace parser

namespace {

// Runs one of the walks for an operation that takes and gives everything by argument.
template <class Run>
int RunWalk(const CString& text, const char* tempPath, CString& body, CStringArray& fileNames, CStringArray* filePaths,
            int& bodyTop, int& bodyEnd, Run run) {
    parser::CEntity entity(parser::TextOf(text));
    parser::CNewFiles files(tempPath);
    parser::Range range{bodyTop, bodyEnd};
    const int result = run(entity, parser::Findings{&body, fileNames, filePaths, files}, range);
    bodyTop = range.top;
    bodyEnd = range.end;
    return result;
}

}  // namespace

int CEMailPerser::PerseMime(const CString& text, int start, const char* tempPath, CString& body,
                            CStringArray& fileNames, CStringArray* filePaths, int& bodyTop, int& bodyEnd) {
    return RunWalk(text, tempPath, body, fileNames, filePaths, bodyTop, bodyEnd,
                   [&](parser::CEntity& entity, const parser::Findings& findings, parser::Range& range) {
                       return parser::WalkEntity(entity, start, findings, range);
                   });
}

int CEMailPerser::PerseRelated(const CString& text, int start, const char* tempPath, const CString& parameters,
                               CString& body, CStringArray& fileNames, CStringArray* filePaths, int& bodyTop,
                               int& bodyEnd) {
    return RunWalk(text, tempPath, body, fileNames, filePaths, bodyTop, bodyEnd,
                   [&](parser::CEntity& entity, const parser::Findings& findings, parser::Range& range) {
                       return parser::WalkRelated(entity, start, parameters, findings, range);
                   });
}

int CEMailPerser::PerseMixed(const CString& text, int start, const char* tempPath, const CString& parameters,
                             CString& body, CStringArray& fileNames, CStringArray* filePaths, int& bodyTop,
                             int& bodyEnd) {
    return RunWalk(text, tempPath, body, fileNames, filePaths, bodyTop, bodyEnd,
                   [&](parser::CEntity& entity, const parser::Findings& findings, parser::Range& range) {
                       return parser::WalkMixed(entity, start, parameters, findings, range);
                   });
}

int CEMailPerser::PerseAlternative(const CString& text, int start, const CString& parameters, CString& body,
                                   int& bodyTop, int& bodyEnd) {
    CStringArray names;
    return RunWalk(text, nullptr, body, names, nullptr, bodyTop, bodyEnd,
                   [&](parser::CEntity& entity, const parser::Findings& findings, parser::Range& range) {
                       return parser::WalkAlternative(entity, start, parameters, findings.body, range);
                   });
}

int CEMailPerser::PerseBody(const CString& text, int start, const CString& parameters, const CString& boundary,
                            CString& body, int& bodyTop, int& bodyEnd) {
    CStringArray names;
    return RunWalk(text, nullptr, body, names, nullptr, bodyTop, bodyEnd,
                   [&](parser::CEntity& entity, const parser::Findings& findings, parser::Range& range) {
                       parser::CDelimiters delimiters(entity.Text(), parser::NameOf(boundary));
                       parser::CDelimiters* const enclosing = boundary.IsEmpty() ? nullptr : &delimiters;
                       return parser::WalkBody(entity, start, parameters, enclosing, findings.body, range);
                   });
}

#include <optional>

#include <mailengine/parser/TransferDecoder.h>
#include <mailengine/parser/Walk.h>
#include <mailengine/support/Wire.h>
#include <mailengine/support/platform/text/Characters.h>

namespace parser {
namespace {

using Kind = MailFault::Kind;

std::string_view Rest(const Place& place) {
    return Mid(place.entity.Text(), place.start);
}

int HeaderEnd(std::string_view text) {
    const int emptyLine = FindEmptyLine(text, 0);
    return emptyLine != -1 ? emptyLine : LengthOf(text);
}

// A part without a name is a text if its type says so, and else nothing that a multipart/mixed may hold.
int WalkMixedFile(const Place& place, const CString& type, const Findings& findings, Range& range) {
    CString name = GetFileName(place.parameters.View());
    if (!name.IsEmpty()) return ExtractFile(place, std::move(name), findings, range);
    if (IsType(type, wire::kTextPlain)) return WalkBody(place, findings, range);
    return findings.faults.Record(Kind::kPartWithoutName, Rest(place), type.View());
}

int WalkMixedPart(CEntity& entity, Part& part, CDelimiters& delimiters, const Findings& findings) {
    int cur = part.top;
    const ContentType type = entity.GetContentType(cur, cur);
    const Place place{entity, cur, type.parameters, &delimiters};
    Range range{cur, cur};
    const int result = IsType(type.type, "multipart/alternative") ? WalkAlternative(place, findings, range)
                       : IsType(type.type, wire::kAttachedMail)   ? ExtractMail(place, findings, range)
                                                                  : WalkMixedFile(place, type.type, findings, range);
    part.walked = range.end;
    return result;
}

// One part of a multipart/related, which is an entity of any type. The first text that is not empty is the body.
int WalkRelatedPart(std::string_view text, const Findings& findings) {
    if (findings.depth >= kMaxNesting) return findings.faults.Record(Kind::kNestsTooDeep, text);
    CString body;
    const Findings inner{findings.body != nullptr ? &body : nullptr,
                         findings.fileNames,
                         findings.filePaths,
                         findings.files,
                         findings.faults,
                         findings.depth + 1};
    CEntity entity(text);
    Range unused;
    const int result = WalkEntity(entity, 0, inner, unused);
    if (inner.body != nullptr && findings.body->IsEmpty()) *findings.body = std::move(body);
    return result;
}

int WalkImage(const Place& place, const CString& type, const Findings& findings, Range& range) {
    CString name = GetFileName(place.parameters.View());
    if (!name.IsEmpty()) return ExtractFile(place, std::move(name), findings, range);
    return findings.faults.Record(Kind::kImageWithoutName, Rest(place), type.View());
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
        body.encoding = TakeTransferEncoding(entity, behind);
        const int emptyLine = FindEmptyLine(entity, behind);
        if (emptyLine != -1) body.offset = emptyLine + 2;
    }
    if (body.offset != -1) body.text = Mid(entity, body.offset);
    return body;
}

int DecodeBody(const EntityBody& found, const CString& charset, CString* body) {
    if (body == nullptr) return CTransferDecoder(found.encoding.View()).Refuses(found.text.size()) ? 0 : 1;
    return DecodeText(found.text, found.encoding.View(), charset.View(), *body);
}

}  // namespace

int WalkMail(std::string_view text, const Findings& findings, Range& range) {
    CString version;
    int next = 0;
    int result = 0;
    if (text.empty()) {
        findings.faults.Record(Kind::kEmpty, text);
    } else if (!FindField(text, 0, "MIME-Version:", version, next)) {
        findings.faults.Record(Kind::kNoMimeVersion, Mid(text, 0, HeaderEnd(text)));
    } else if (version.View() != "1.0") {
        findings.faults.Record(Kind::kOtherMimeVersion, text, version.View());
    } else {
        CEntity mail(text);
        result = WalkEntity(mail, next, findings, range);
    }
    if (range.top == -1) range.top = HeaderEnd(text);
    return result;
}

int WalkEntity(CEntity& entity, int start, const Findings& findings, Range& range) {
    int cur = start;
    const ContentType type = entity.TakeContentType(start, cur);
    const Place place{entity, cur, type.parameters};
    if (IsType(type.type, "multipart/related")) return WalkRelated(place, findings, range);
    if (IsType(type.type, wire::kMultipartMixed)) return WalkMixed(place, findings, range);
    if (IsType(type.type, "multipart/alternative")) return WalkAlternative(place, findings, range);
    if (IsType(type.type, wire::kTextPlain)) return WalkBody(place, findings, range);
    if (StandsAtIgnoringCase(type.type.View(), 0, "image")) return WalkImage(place, type.type, findings, range);
    range = {cur, entity.Length()};
    return 1;
}

int WalkMixed(const Place& place, const Findings& findings, Range& range) {
    CParts parts(place.entity.Text(), place.start, place.parameters.View(), range, findings.faults);
    for (Part part; parts.Next(part);)
        if (!WalkMixedPart(place.entity, part, parts.Delimiters(), findings)) return parts.FailIn(part);
    return parts.Closed() ? 1 : 0;
}

int WalkAlternative(const Place& place, const Findings& findings, Range& range) {
    CParts parts(place.entity.Text(), place.start, place.parameters.View(), range, findings.faults);
    std::optional<CString> chosen;  // the parameters of the text part
    int textTop = 0, textNumber = 0;
    for (Part part; parts.Next(part);) {
        if (chosen) continue;
        textTop = part.top;
        const ContentType& type = place.entity.GetContentType(part.top, textTop);
        if (IsType(type.type, wire::kTextPlain)) chosen = type.parameters;
        textNumber = part.number;
    }
    if (!parts.Closed()) return 0;
    if (!chosen) return 1;
    Range unused;
    const int result = WalkBody({place.entity, textTop, *chosen, &parts.Delimiters()}, findings, unused);
    return result ? result : findings.faults.InPart(textNumber);
}

int WalkRelated(const Place& place, const Findings& findings, Range& range) {
    CParts parts(place.entity.Text(), place.start, place.parameters.View(), range, findings.faults);
    for (Part part; parts.Next(part);) {
        const int end = parts.EndOf(part);
        if (end == -1) continue;  // nor will the search for the next one find any
        if (WalkRelatedPart(Mid(place.entity.Text(), part.top, end - part.top), findings)) continue;
        range.end = parts.Delimiters().LineEnd(end);
        return findings.faults.InPart(part.number);
    }
    return parts.Closed() ? 1 : 0;
}

int WalkBody(const Place& place, const Findings& findings, Range& range) {
    const int end = place.delimiters == nullptr ? place.entity.Length() : place.delimiters->FindTop(place.start);
    if (end != -1) range.end = end;
    const EntityBody found = FindBody(Mid(place.entity.Text(), place.start, end - place.start));
    range.top = found.offset == -1 ? range.end : place.start + found.offset;
    if (findings.body != nullptr) findings.body->Empty();
    if (end == -1) return FailWithoutEnd(place, place.start, -1, CString(), findings);
    if (found.text.empty()) return 1;
    const int result = DecodeBody(found, GetParameter(place.parameters.View(), "charset"), findings.body);
    return result ? result : findings.faults.Record(Kind::kTextNotDecoded, found.text);
}

int ReadSubject(std::string_view text, int depth, CFaultLog& faults, CString& subject) {
    CStringArray unusedNames;
    CNewFiles noFiles(nullptr);
    Range range;
    if (!WalkMail(text, {nullptr, unusedNames, nullptr, noFiles, faults, depth}, range)) return 0;
    subject = ReadSubjectField(text, range.top);
    return 1;
}

}  // namespace parser

#include <hostkit/gateway/entities/Content.h>
#include <hostkit/gateway/entities/ParserOptions.h>
#include <hostkit/gateway/text/EncodedWords.h>
#include <hostkit/gateway/text/Iso2022.h>
#include <memory>

namespace hostkit::gateway {
namespace {

std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        c = g_ascii_tolower(c);
    return lower;
}

// GMime would convert an extended parameter of ISO-2022-JP by libc's table, which lacks row 13. Under the name of
// another seven-bit charset the bytes come through, and are converted here.
std::string WithRawJapanese(std::string field) {
    constexpr std::string_view kName = "iso-2022-jp";
    constexpr std::string_view kPlain = "us-ascii";
    const std::string lower = Lower(field);
    std::string renamed;
    std::size_t done = 0;
    for (std::size_t at = lower.find(kName); at != std::string::npos; at = lower.find(kName, at + 1)) {
        const std::size_t end = lower.find_first_not_of("-0123456789ms", at + kName.size());
        if (end == std::string::npos || field[end] != '\'' || at == 0 || lower.find_first_of("=\"", at - 1) != at - 1)
            continue;
        renamed.append(field, done, at - done).append(kPlain);
        done = end;
    }
    return renamed.append(field, done);
}

std::string Parameter(GMimeParamList* list, const char* name) {
    GMimeParam* const parameter = g_mime_param_list_get_parameter(list, name);
    const char* const value = parameter != nullptr ? g_mime_param_get_value(parameter) : nullptr;
    if (value == nullptr) return "";
    std::size_t ignored = 0;
    return HasIso2022Escapes(value) ? Iso2022ToUtf8(value, ignored) : DecodeWords(value, Words::Text);
}

// Some programs put a whole field into words, its structure too.
std::string FieldFor(const Field& field) {
    const std::string value = Unfold(field.raw);
    return WithRawJapanese(DecodeWords(value, value.starts_with("=?") ? Words::Text : Words::Parts));
}

std::string WithoutAngles(std::string value) {
    if (value.starts_with('<')) value.erase(0, 1);
    if (value.ends_with('>')) value.pop_back();
    return value;
}

// RFC 2045 5.2 takes what is not valid for text; but a type alone, as old programs write it, says enough.
std::string TypeWithoutSubtype(const std::string& field) {
    const std::string type = Lower(field.substr(0, field.find_first_of("; \t")));
    return type == "application" || type == "image" || type == "audio" || type == "video" ? "application/octet-stream"
                                                                                          : "text/plain";
}

void ReadType(const std::string& field, Content& content) {
    const std::unique_ptr<GMimeContentType, decltype(&g_object_unref)> type(
        g_mime_content_type_parse(Options(), field.c_str()), &g_object_unref);
    content.type = Lower(g_mime_content_type_get_media_type(type.get())) + '/' +
                   Lower(g_mime_content_type_get_media_subtype(type.get()));
    if (field.substr(0, field.find(';')).find('/') == std::string::npos) content.type = TypeWithoutSubtype(field);
    GMimeParamList* const parameters = g_mime_content_type_get_parameters(type.get());
    content.charset = Parameter(parameters, "charset");
    content.boundary = Parameter(parameters, "boundary");
    content.start = WithoutAngles(Parameter(parameters, "start"));
    content.smimeType = Lower(Parameter(parameters, "smime-type"));
    content.name = Parameter(parameters, "name");
    content.isFlowed = Lower(Parameter(parameters, "format")) == "flowed";
    content.isDelSp = Lower(Parameter(parameters, "delsp")) == "yes";
}

void ReadDisposition(const std::string& field, Content& content) {
    const std::unique_ptr<GMimeContentDisposition, decltype(&g_object_unref)> disposition(
        g_mime_content_disposition_parse(Options(), field.c_str()), &g_object_unref);
    const char* const kind = g_mime_content_disposition_get_disposition(disposition.get());
    content.isAttachment = kind != nullptr && Lower(kind) == "attachment";
    const std::string name = Parameter(g_mime_content_disposition_get_parameters(disposition.get()), "filename");
    if (!name.empty()) content.name = name;
}

}  // namespace

Content ReadContent(const Header& header, std::string_view defaultType) {
    Content content;
    content.type = defaultType;
    const Field* const type = header.Find("Content-Type");
    if (type != nullptr && !Unfold(type->raw).empty()) ReadType(FieldFor(*type), content);
    if (const Field* field = header.Find("Content-Disposition")) ReadDisposition(FieldFor(*field), content);
    if (const Field* field = header.Find("Content-ID")) content.id = WithoutAngles(Unfold(field->raw));
    if (const Field* field = header.Find("Content-Transfer-Encoding")) {
        const std::string value = Unfold(field->raw);
        const std::string name = value.substr(0, value.find_first_of(" \t;("));
        content.encoding = g_mime_content_encoding_from_string(name.c_str());
        if (content.encoding == GMIME_CONTENT_ENCODING_DEFAULT) content.unknownEncoding = name;
    }
    return content;
}

}  // namespace hostkit::gateway

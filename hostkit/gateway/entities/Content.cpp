#include <hostkit/gateway/entities/Content.h>
#include <hostkit/gateway/entities/ExtendedParameters.h>
#include <hostkit/gateway/entities/ParserOptions.h>
#include <hostkit/gateway/text/EncodedWords.h>
#include <memory>

namespace hostkit::gateway {
namespace {

std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        c = g_ascii_tolower(c);
    return lower;
}

std::string Parameter(GMimeParamList* list, const ExtendedParameters& extended, const char* name) {
    GMimeParam* const parameter = g_mime_param_list_get_parameter(list, name);
    const char* const value = parameter != nullptr ? g_mime_param_get_value(parameter) : nullptr;
    return value == nullptr ? "" : DecodeWords(extended.Value(name, value), Words::Text);
}

constexpr std::size_t kMostFieldBytes = 256 * 1024;  // a hundred times what programs write

// Some programs put a whole field into words, its structure too.
std::string TextFor(const Field& field) {
    const std::string value = Unfold(field.raw.substr(0, kMostFieldBytes));
    return DecodeWords(value, value.starts_with("=?") ? Words::Text : Words::Parts);
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

void ReadType(const std::string& text, Content& content) {
    ExtendedParameters extended;
    const std::string field = extended.Prepare(text);
    const std::unique_ptr<GMimeContentType, decltype(&g_object_unref)> type(
        g_mime_content_type_parse(Options(), field.c_str()), &g_object_unref);
    content.type = Lower(g_mime_content_type_get_media_type(type.get())) + '/' +
                   Lower(g_mime_content_type_get_media_subtype(type.get()));
    if (field.substr(0, field.find(';')).find('/') == std::string::npos) content.type = TypeWithoutSubtype(field);
    GMimeParamList* const parameters = g_mime_content_type_get_parameters(type.get());
    content.charset = Parameter(parameters, extended, "charset");
    content.boundary = Parameter(parameters, extended, "boundary");
    content.start = WithoutAngles(Parameter(parameters, extended, "start"));
    content.smimeType = Lower(Parameter(parameters, extended, "smime-type"));
    content.name = Parameter(parameters, extended, "name");
    content.isFlowed = Lower(Parameter(parameters, extended, "format")) == "flowed";
    content.isDelSp = Lower(Parameter(parameters, extended, "delsp")) == "yes";
}

void ReadDisposition(const std::string& text, Content& content) {
    ExtendedParameters extended;
    const std::string field = extended.Prepare(text);
    const std::unique_ptr<GMimeContentDisposition, decltype(&g_object_unref)> disposition(
        g_mime_content_disposition_parse(Options(), field.c_str()), &g_object_unref);
    const char* const kind = g_mime_content_disposition_get_disposition(disposition.get());
    content.isAttachment = kind != nullptr && Lower(kind) == "attachment";
    const std::string name =
        Parameter(g_mime_content_disposition_get_parameters(disposition.get()), extended, "filename");
    if (!name.empty()) content.name = name;
}

}  // namespace

Content ReadContent(const Header& header, std::string_view defaultType) {
    Content content;
    content.type = defaultType;
    const Field* const type = header.Find("Content-Type");
    if (type != nullptr && !Unfold(type->raw).empty()) ReadType(TextFor(*type), content);
    if (const Field* field = header.Find("Content-Disposition")) ReadDisposition(TextFor(*field), content);
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

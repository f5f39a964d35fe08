#include <cstring>
#include <hostkit/gateway/text/Html.h>
#include <hostkit/gateway/text/HtmlText.h>
#include <libxml/HTMLparser.h>
#include <memory>

namespace hostkit::gateway {
namespace {

constexpr std::size_t kPieceBytes = 64 << 10;
constexpr std::size_t kDeclarationBytes = 4096;

std::string_view ViewOf(const xmlChar* text) {
    return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}
HtmlText& TextOf(void* page) {
    return *static_cast<HtmlText*>(page);
}

void OnStart(void* page, const xmlChar* name, const xmlChar** attributes) {
    HtmlText::Attributes known;
    for (; attributes != nullptr && *attributes != nullptr; attributes += 2) {
        const std::string_view attribute = ViewOf(attributes[0]);
        if (attribute == "href")
            known.href = ViewOf(attributes[1]);
        else if (attribute == "alt")
            known.alt = ViewOf(attributes[1]);
        else if (attribute == "style")
            known.style = ViewOf(attributes[1]);
    }
    TextOf(page).Begin(ViewOf(name), known);
}
void OnEnd(void* page, const xmlChar* name) {
    TextOf(page).End(ViewOf(name));
}
void OnText(void* page, const xmlChar* text, int length) {
    TextOf(page).Text({reinterpret_cast<const char*>(text), static_cast<std::size_t>(length)});
}

// Events alone: no tree is built, and nothing is told of errors.
xmlSAXHandler Handlers() {
    xmlSAXHandler handlers{};
    handlers.startElement = &OnStart;
    handlers.endElement = &OnEnd;
    handlers.characters = &OnText;
    handlers.ignorableWhitespace = &OnText;
    return handlers;
}

}  // namespace

std::string HtmlToText(std::string_view html) {
    HtmlText page;
    xmlSAXHandler handlers = Handlers();
    const std::unique_ptr<htmlParserCtxt, decltype(&htmlFreeParserCtxt)> parser(
        htmlCreatePushParserCtxt(&handlers, &page, nullptr, 0, nullptr, XML_CHAR_ENCODING_UTF8), &htmlFreeParserCtxt);
    if (!parser) return "";
    htmlCtxtUseOptions(parser.get(), HTML_PARSE_RECOVER | HTML_PARSE_NONET | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING |
                                         HTML_PARSE_IGNORE_ENC);
    for (std::size_t at = 0; at < html.size(); at += kPieceBytes) {
        const std::string_view piece = html.substr(at, kPieceBytes);
        htmlParseChunk(parser.get(), piece.data(), static_cast<int>(piece.size()), 0);
    }
    htmlParseChunk(parser.get(), "", 0, 1);
    if (parser->myDoc != nullptr) xmlFreeDoc(parser->myDoc);
    return page.Take();
}

std::string CharsetInHtml(std::string_view html) {
    std::string head(html.substr(0, kDeclarationBytes));
    for (char& c : head)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 0x20);
    for (std::size_t meta = head.find("<meta"); meta != std::string::npos; meta = head.find("<meta", meta + 1)) {
        const std::size_t end = head.find('>', meta);
        const std::size_t charset = head.find("charset", meta);
        if (charset == std::string::npos || charset > end) continue;
        const std::size_t from = head.find_first_not_of(" =\"'", charset + 7);
        const std::size_t to = head.find_first_of(" \"';/>", from);
        if (from != std::string::npos && to != std::string::npos) return head.substr(from, to - from);
    }
    return "";
}

}  // namespace hostkit::gateway

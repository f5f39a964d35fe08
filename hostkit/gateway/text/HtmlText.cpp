#include <algorithm>
#include <array>
#include <hostkit/gateway/text/HtmlText.h>

namespace hostkit::gateway {
namespace {

constexpr int kMaxIndent = 10;  // of quotes and lists: deeper ones would make each line longer than its text

bool IsOneOf(std::string_view name, std::initializer_list<std::string_view> names) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool IsUnshown(std::string_view name, std::string_view style) {
    if (IsOneOf(name, {"head", "script", "style", "title", "template", "object", "svg", "math"})) return true;
    const std::size_t display = style.find("display");
    return display != std::string_view::npos && style.substr(display, 16).find("none") != std::string_view::npos;
}

// Elements that stand on lines of their own, and those with an empty line around.
bool IsBlock(std::string_view name) {
    return IsOneOf(name, {"div",     "li",     "tr",     "dt",      "dd",     "table", "form",    "center",   "section",
                          "article", "header", "footer", "address", "body",   "html",  "caption", "fieldset", "nav",
                          "aside",   "main",   "option", "hr",      "legend", "tbody", "thead"});
}
bool IsParagraph(std::string_view name) {
    return IsOneOf(name, {"p", "h1", "h2", "h3", "h4", "h5", "h6", "ul", "ol", "dl", "pre", "blockquote", "figure"});
}
bool IsList(std::string_view name) {
    return name == "ul" || name == "ol";
}
bool IsCell(std::string_view name) {
    return name == "td" || name == "th";
}

bool IsWhite(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f';
}

bool IsWorthShowing(std::string_view url) {
    constexpr std::array<std::string_view, 5> kSchemes = {"http://", "https://", "mailto:", "ftp://", "tel:"};
    return std::any_of(kSchemes.begin(), kSchemes.end(), [&](auto scheme) { return url.starts_with(scheme); });
}

std::string_view WithoutScheme(std::string_view url) {
    for (const std::string_view scheme : {"http://", "https://", "mailto:", "tel:"})
        if (url.starts_with(scheme)) url.remove_prefix(scheme.size());
    if (url.ends_with('/')) url.remove_suffix(1);
    return url;
}

}  // namespace

void HtmlText::Begin(std::string_view name, const Attributes& attributes) {
    if (m_skipped > 0 || IsUnshown(name, attributes.style)) {
        ++m_skipped;
        return;
    }
    if (name == "br") {
        if (!m_isLineOpen && m_breaks == 0) m_text += '\n';
        m_breaks = m_isLineOpen ? std::max(m_breaks, 1) : std::min(m_breaks + 1, 3);
        m_isLineOpen = false;
    } else if (IsParagraph(name)) {
        Break(m_lists.empty() || !IsList(name) ? 2 : 1);
    } else if (IsBlock(name)) {
        Break(1);
    }
    if (name == "hr") Put("----------------------------------------"), Break(1);
    if (name == "img" && !attributes.alt.empty()) Text(attributes.alt);
    if (name == "a") m_links.push_back({std::string(attributes.href), m_text.size()});
    if (name == "pre") ++m_preformatted;
    if (name == "blockquote") ++m_quotes;
    if (IsList(name)) m_lists.push_back({name == "ol", 0});
    if (name == "li") BeginItem();
    if (IsCell(name)) m_isCellDue = m_isLineOpen;
}

void HtmlText::BeginItem() {
    const auto depth = static_cast<std::size_t>(std::min<std::ptrdiff_t>(std::ssize(m_lists), kMaxIndent));
    m_mark.assign(depth > 1 ? 2 * (depth - 1) : 0, ' ');
    if (!m_lists.empty() && m_lists.back().isOrdered)
        m_mark += std::to_string(++m_lists.back().number) + ". ";
    else
        m_mark += "- ";
}

void HtmlText::End(std::string_view name) {
    if (m_skipped > 0) {
        --m_skipped;
        return;
    }
    if (name == "a") EndLink();
    if (name == "pre" && m_preformatted > 0) --m_preformatted;
    if (IsList(name) && !m_lists.empty()) m_lists.pop_back();
    if (name == "li") m_mark.clear();
    if (name == "blockquote") {
        if (m_quotes > 0) --m_quotes;
        Break(2);
    } else if (IsParagraph(name)) {
        Break(m_lists.empty() || !IsList(name) ? 2 : 1);
    } else if (IsBlock(name) && name != "hr") {
        Break(1);
    }
}

void HtmlText::EndLink() {
    if (m_links.empty()) return;
    const Link link = std::move(m_links.back());
    m_links.pop_back();
    if (!IsWorthShowing(link.url)) return;
    std::string_view shown = std::string_view(m_text).substr(std::min(link.from, m_text.size()));
    const std::size_t first = shown.find_first_not_of(" \n");
    shown.remove_prefix(first == std::string_view::npos ? shown.size() : first);
    if (WithoutScheme(shown) == WithoutScheme(link.url)) return;
    if (!shown.empty() && m_breaks == 0) m_isBlankDue = true;
    Put("<" + link.url + ">");
}

void HtmlText::Break(int lines) {
    m_isBlankDue = m_isCellDue = false;
    if (!m_isLineOpen && m_breaks == 0) return;  // the line is new
    m_breakQuotes = m_breaks == 0 ? m_quotes : std::min(m_breakQuotes, m_quotes);
    m_breaks = std::max(m_breaks, lines);
}

void HtmlText::Text(std::string_view text) {
    if (m_skipped > 0) return;
    if (m_preformatted > 0) return PutPreformatted(text);
    for (std::size_t at = 0; at < text.size();) {
        if (IsWhite(text[at])) {
            m_isBlankDue = m_isLineOpen && m_breaks == 0;
            ++at;
            continue;
        }
        const auto end = std::find_if(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(), IsWhite);
        const auto length = static_cast<std::size_t>(end - text.begin()) - at;
        Put(text.substr(at, length));
        at += length;
    }
}

void HtmlText::PutPreformatted(std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        if (end != 0) Put(text.substr(0, end));
        if (end == std::string_view::npos) break;
        m_breaks = std::min(m_breaks + 1, 3);
        m_isLineOpen = false;
        text.remove_prefix(end + 1);
    }
}

void HtmlText::Put(std::string_view word) {
    if (m_breaks > 0 && !m_text.empty()) {
        for (; m_breaks > 0; --m_breaks) {
            m_text += '\n';
            if (m_breaks > 1)
                m_text.append(static_cast<std::size_t>(std::min({m_quotes, m_breakQuotes, kMaxIndent})), '>');
        }
        m_isLineOpen = false;
    }
    m_breaks = 0;
    if (!m_isLineOpen)
        BeginLine();
    else if (m_isCellDue)
        m_text += " | ";
    else if (m_isBlankDue)
        m_text += ' ';
    m_isBlankDue = m_isCellDue = false;
    m_isLineOpen = true;
    m_text += word;
}

void HtmlText::BeginLine() {
    if (m_quotes > 0) m_text.append(static_cast<std::size_t>(std::min(m_quotes, kMaxIndent)), '>').append(1, ' ');
    m_text += m_mark;
    m_mark.clear();
}

std::string HtmlText::Take() {
    if (!m_text.empty()) m_text += '\n';
    return std::move(m_text);
}

}  // namespace hostkit::gateway

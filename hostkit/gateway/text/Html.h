// Html: the text of an HTML page, from the events of libxml2's push parser: links as "text <url>", lists, tables and
// quotes legible, no scripts, no styles, nothing that is not shown; and nothing is ever loaded. Any thread.
#pragma once

#include <string>
#include <string_view>

namespace hostkit::gateway {

// html and the result are UTF-8; lines end in LF. The cost is linear in html, whatever stands in it.
std::string HtmlToText(std::string_view html);

// The charset that a page declares for itself in its first bytes; empty if it does not.
std::string CharsetInHtml(std::string_view html);

}  // namespace hostkit::gateway

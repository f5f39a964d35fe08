// Flowed: a text of format=flowed (RFC 3676) with its paragraphs joined again. Stateless; any thread.
#pragma once

#include <string>
#include <string_view>

namespace hostkit::gateway {

// text ends its lines by LF or CRLF, the result by LF. Quoted lines get a blank behind their marks. isDelSp: the blank
// that marks a flowed line is no part of the text.
std::string Unflow(std::string_view text, bool isDelSp);

}  // namespace hostkit::gateway

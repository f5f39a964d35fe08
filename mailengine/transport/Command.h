// The SMTP commands that carry an argument (RFC 5321 4.1.1), and what may stand in them.
#pragma once

#include <string_view>

#include <mailengine/support/platform/text/String.h>
#include <mailengine/support/platform/text/StringArray.h>

inline constexpr char kHeloCommand[] = "HELO %s\r\n";
inline constexpr char kMailCommand[] = "MAIL FROM:<%s>\r\n";
inline constexpr char kRcptCommand[] = "RCPT TO:<%s>\r\n";

// Puts argument into format. The result is null, or the text that tells why the command may not be sent: it is too long
// (CSmtp::kCommandBytes), or the argument holds CR, LF or NUL and so could smuggle a command in.
const char* FormatCommand(const char* format, std::string_view argument, CString& command);
// The same for the commands of a whole envelope.
const char* EnvelopeProblem(std::string_view sender, const CStringArray& recipients);

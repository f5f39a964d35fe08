// MailtoUrl: a letter from a mailto URL (RFC 6068), as a browser hands it to a mail program. It comes from a page that
// nobody vouches for, so it fills in what the user sees and can change, and nothing else. Any thread.
#pragma once

#include <hostkit/letter/Letter.h>
#include <string_view>

namespace hostkit {

// The letter with to, cc, bcc, subject, body and in-reply-to of the URL; all other fields are left out, attachments
// too. No value but the body has a line end, and none has another control character, a format character or a byte that
// is not UTF-8. A % without two hexadecimal digits stands for itself. The addresses are not checked: Fill does, when
// the user has seen them. Throws Failure for a text that does not begin with "mailto:".
HOSTKIT_API Letter LetterOfMailto(std::string_view url);

}  // namespace hostkit

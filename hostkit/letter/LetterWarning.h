// LetterWarning: what others may refuse or change in a letter that is written or sent.
#pragma once

#include <hostkit/attachments/CarriedFiles.h>
#include <string>

#include <mailengine/model/MailDoc.h>

namespace hostkit {

// In UTF-8, empty if there is nothing to say. It looks at the attachments, so it is asked before the letter goes out.
std::string LetterWarning(const CMailDoc& doc, const CarriedFiles& carried);

}  // namespace hostkit

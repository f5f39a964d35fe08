// Diagnosis: why a message cannot be read, in words. Stateless; one thread, as MailText.
#pragma once

#include <filesystem>
#include <hostkit/characters/Export.h>
#include <string>

#include <mailengine/parser/MailFault.h>

namespace hostkit {

// The fault that CEMailPerser::Perse gave with its 0, as one line of UTF-8 that goes on from "FILE: ". folder is
// the one that the user named for attachments, empty if none was.
HOSTKIT_API std::string FaultText(const MailFault& fault, const std::filesystem::path& folder = {});

}  // namespace hostkit

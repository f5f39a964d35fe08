// Diagnosis: why a message cannot be read. The parser gives a result alone; this looks again, with the parser's own
// operations, and names the first fault. Only for messages that failed: it copies each part that it looks into. One
// object serves any number of messages.
#pragma once

#include <filesystem>
#include <hostkit/characters/Export.h>
#include <string>

#include <mailengine/parser/EMailPerser.h>

namespace hostkit {

class HOSTKIT_API Diagnosis : private CEMailPerser {
public:
    // The fault of a message that Perse refused, as one line of UTF-8 that goes on from "FILE: ". workFolder, a library
    // path, takes attachments for the trial; target, if not null, is the folder that the user named.
    std::string FaultOf(const CString& mail, const CString& workFolder, const std::filesystem::path* target);

private:
    enum class Kind { Mixed, Alternative, Related };

    std::string MailFault(const CString& mail, int depth);
    std::string EntityFault(const CString& entity, int start, int depth);
    std::string MultipartFault(const CString& entity, int start, const CString& parameters, Kind kind, int depth);
    std::string PartFault(const CString& part, Kind kind, bool isLast, int depth);
    std::string MixedPartFault(const CString& part, bool isLast, int depth);
    std::string TextFault(const CString& text, int start, const CString& parameters);
    std::string FileFault(const CString& part, const CString& type, const CString& parameters, bool isLast);
    bool HasName(const CString& parameters);
    std::string ExtractionFault(const CString& mail, const CString& workFolder);
};

}  // namespace hostkit

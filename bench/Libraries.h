// Libraries: the contestants that write and read whole mails, each in the way that its users would.
#pragma once

#include <array>
#include <bench/Letter.h>
#include <string>

#include <mailengine/support/platform/text/String.h>

namespace bench {

struct Library {
    const char* name;
    const char* charset;  // of the letters it takes and gives

    // The whole message, with the body as ISO-2022-JP under Base64.
    std::string (*write)(const Letter& letter);
    // The message with the file attached, to a new file.
    void (*writeFile)(const Letter& letter, const std::string& attachment, const std::string& path);
    // Opens the message; attachments go into folder, which may be empty if there are none, under their
    // names.
    Letter (*read)(const CString& message, const std::string& folder);
};

extern const Library kEngine;
extern const Library kGMime;
extern const Library kMimetic;

inline const std::array<const Library*, 3> kLibraries{&kEngine, &kGMime, &kMimetic};

}  // namespace bench

// MessageFile: a stored message on its way to the parser, and a folder for what comes out. One thread.
#pragma once

#include <csignal>
#include <string>

#include <mailengine/support/platform/text/String.h>

// The message at path ("-" is standard input), with CRLF line ends. A message whose first line ends in a bare LF, as
// mail stores on this system keep it, gets CRLF at every line end; any other comes byte for byte. Throws CFailure, for
// a message of 2 GiB or more too.
CString ReadMessage(const std::string& path);

// "standard input" for "-", else the path: how a message is named to the user.
std::string NameOfMessage(const std::string& path);

// A folder of the user's that takes attachments: made if it is missing. Gives its library path, without a trailing
// separator. Throws CFailure.
CString TargetFolder(const std::string& path);

// A new folder that only this user can enter. It goes with all that is in it when the object does; until then the
// signals that end the program wait.
class CWorkFolder {
public:
    // Throws CFailure.
    CWorkFolder();
    CWorkFolder(const CWorkFolder&) = delete;
    CWorkFolder& operator=(const CWorkFolder&) = delete;
    ~CWorkFolder();

    const CString& LibraryPath() const { return m_strLibraryPath; }

private:
    void Make();

    sigset_t m_oldMask{};
    std::string m_strPath;
    CString m_strLibraryPath;
};

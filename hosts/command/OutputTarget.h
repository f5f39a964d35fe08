// COutputTarget: the place that -o names. An existing file, also one behind a link, is replaced only by a whole message
// (CTemporaryFile); standard output, a pipe or a device gets the message as it comes. One thread.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <sys/stat.h>

#include "DescriptorStream.h"
#include "TemporaryFile.h"

class COutputTarget {
public:
    // Looks at path ("-" is standard output), makes and opens nothing. Throws CFailure for a folder, a link to nothing,
    // a file that may not be written.
    explicit COutputTarget(const std::string& path);
    COutputTarget(const COutputTarget&) = delete;
    COutputTarget& operator=(const COutputTarget&) = delete;
    // Without a Commit before it, a file is as it was and nothing new stays.
    ~COutputTarget();

    // Throws CFailure if the file status is that of the target, under whatever name: it would be read while it is
    // written. what names the file in the error.
    void CheckIsNot(const struct stat& status, const std::string& what) const;

    // Opens the place. The stream is the target's, and lives as long. Throws CFailure.
    COutputStream& Open();
    // Ends the message: every byte is out, and a file has its new content. Throws CFailure.
    void Commit();
    // Throws CFailure with the reason, if a hand-over failed; else returns.
    void CheckWritten() const;

private:
    void LookAtFile();

    std::string m_strShown;  // how the user named the place
    std::string m_strPath;   // the file itself, links followed; empty for standard output
    std::optional<struct stat> m_status;
    int m_nDescriptor = -1;  // of a place that is written straight
    std::unique_ptr<CTemporaryFile> m_pFile;
    std::unique_ptr<CDescriptorStream> m_pStream;
};

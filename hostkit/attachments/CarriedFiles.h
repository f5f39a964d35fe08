// CarriedFiles: a document's attachments as its message can carry them. Each file that cannot stay where it is for the
// engine to read it stands, under the name that the message shows, in a private folder that goes with the object: as a
// link where its name or its folder has characters that code page 932 lacks or has in another form, as a copy where it
// must not change or has to be another. The document names those meanwhile. One thread.
//
// An attached mail goes in as it stands, with CRLF at its line ends. One that 7bit cannot carry goes in as Base64, like
// any other file, under .EML: the engine takes only .eml for a mail, other programs take both.
#pragma once

#include <deque>
#include <functional>
#include <hostkit/attachments/AttachmentWatch.h>
#include <hostkit/files/WorkFolder.h>
#include <map>
#include <string>
#include <vector>

#include <mailengine/model/MailDoc.h>

namespace hostkit {

enum class Copied {
    Needed,  // mails with other line ends, and files whose size the system does not tell, as those in /proc
    All,     // since the mail goes out slowly, and nothing can be taken back when a file changes meanwhile
};

class CarriedFiles {
public:
    // Told of each piece that was copied, in bytes; false cancels.
    using Copying = std::function<bool(std::size_t bytes)>;
    struct Cancelled {};

    // doc must outlive the object. Throws Failure for a file that cannot be read, that changes while it is copied, or
    // whose name a Japanese mail cannot carry, and Cancelled.
    CarriedFiles(CMailDoc& doc, Copied copied, const Copying& copying = {});
    CarriedFiles(const CarriedFiles&) = delete;
    CarriedFiles& operator=(const CarriedFiles&) = delete;
    ~CarriedFiles();

    // What the message shows otherwise than the user gave it, for the user; empty: nothing.
    const std::string& Warning() const { return m_strWarning; }
    // Whether the files that are read stay as they are now. Failures name the user's own.
    AttachmentWatch Watch() const { return AttachmentWatch(m_files); }
    // Throws Failure for a file of the user's that cannot be read now (CheckAttachable).
    void CheckReadable() const;
    // A text of the engine's, in UTF-8, with the user's own paths.
    std::string InUsersNames(std::string text) const;

private:
    CString Carry(const CString& path, Copied copied, const Copying& copying);
    CString PlaceFor(const CString& name);

    CMailDoc& m_doc;
    std::vector<CMailDoc::FileInfo> m_given;
    int m_nModified;
    std::deque<WorkFolder> m_folders;  // more than one where files have one name
    std::map<std::string, std::size_t> m_taken;
    std::vector<AttachmentWatch::File> m_files;
    std::string m_strWarning;
};

}  // namespace hostkit

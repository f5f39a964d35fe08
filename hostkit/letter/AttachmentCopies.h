// AttachmentCopies: attachments that cannot be left where they are while a mail is written, copied whole into folders
// that go with the object (WorkFolder). The document names the copies meanwhile. One thread.
#pragma once

#include <hostkit/files/WorkFolder.h>
#include <list>
#include <vector>

#include <mailengine/model/MailDoc.h>

namespace hostkit {

enum class Copied {
    Unsized,  // files whose size the system does not tell, as those in /proc: 0, yet there is something to read
    All,      // since the mail goes out slowly, and nothing can be taken back when a file changes meanwhile
};

class AttachmentCopies {
public:
    // doc must outlive the object. Throws Failure for a file that cannot be read, or that changes while it is copied.
    AttachmentCopies(CMailDoc& doc, Copied copied);
    AttachmentCopies(const AttachmentCopies&) = delete;
    AttachmentCopies& operator=(const AttachmentCopies&) = delete;
    ~AttachmentCopies();

private:
    CString CopyOf(const CString& path);

    CMailDoc& m_doc;
    std::vector<CMailDoc::FileInfo> m_files;
    int m_nModified;
    std::list<WorkFolder> m_folders;  // one for each copy: two files may have one name
};

}  // namespace hostkit

// The check of a mail's attachments that the writer makes before its first byte, for whoever wants to know earlier.
#pragma once

#include <vector>

#include <mailengine/model/MailDoc.h>

// 1 if every file can be opened. Else 0, and error names all that cannot, each path with a CRLF.
int CheckAttachments(const std::vector<CMailDoc::FileInfo>& files, CString& error);

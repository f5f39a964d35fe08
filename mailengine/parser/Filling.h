// Filling: a whole message into a document, to open it or to answer it. One document, one thread.
#pragma once

#include <string_view>

#include <mailengine/model/MailDoc.h>
#include <mailengine/parser/MailFault.h>
#include <mailengine/support/platform/text/String.h>
#include <mailengine/support/platform/text/StringArray.h>

namespace parser {

// The header of a mail as people read it above a quoted one, a line for each field, appended to summary.
struct SummaryFields {
    const CStringArray& from;
    const CStringArray& to;
    const CStringArray& cc;
    const CString& subject;
    const CString& date;
    const CStringArray& fileNames;
};
void AppendSummary(const SummaryFields& fields, CString& summary);

// Walks a message of less than 2 GiB and fills document with it as CEMailPerser::Perse tells. A folder makes files in
// it; without one, null, names alone are collected. fault, if not null, is empty and takes the first fault. 0: the
// message cannot be read; the document then has what its header says, and body and file list stay.
int FillDocument(std::string_view text, const char* folder, bool answers, CMailDoc& document, MailFault* fault);

}  // namespace parser

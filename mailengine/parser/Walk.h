// Walk: the road of one run of the parser through the structure of a message (RFC 2046), and the files it makes.
// Offsets as in Scanning.h. One run, one thread.
//
// Each walk reads the entity at a place and gives 1, or 0 if it cannot be read; what was found before stays. Its fault
// is in the log then, but where the multipart around has no end, which that one records. range.top takes where the
// header ends for the header scan, range.end where the walk goes on behind the entity; either may stay as it was.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <mailengine/parser/FaultLog.h>
#include <mailengine/parser/Fields.h>
#include <mailengine/parser/Parts.h>
#include <mailengine/parser/Scanning.h>
#include <mailengine/support/platform/files/File.h>
#include <mailengine/support/platform/text/String.h>
#include <mailengine/support/platform/text/StringArray.h>

namespace parser {

// How deep related parts and attached mails together nest. Every level scans what lies below it once more and takes
// its share of the stack; real mail stays below 10.
inline constexpr int kMaxNesting = 100;

// The new files of one run, all directly inside one folder.
class CNewFiles {
public:
    // folder is code page 932 without a trailing backslash. Nothing can be made in a null or an empty one.
    explicit CNewFiles(const char* folder) : m_folder(folder) {}

    // Opens a new, empty file named name and extension, or name, _, the first number from 1 that is free, and
    // extension. path takes its full path. The result is 0, or the system's number of why it cannot be made; then
    // nothing was.
    [[nodiscard]] int Create(CFile& file, const CString& name, std::string_view extension, CString& path);

    // A working buffer for decoded pieces.
    std::vector<unsigned char>& Buffer() { return m_buffer; }

private:
    CString m_folder;
    // What was tried first -> the number to go on from: those below were taken, and the run deletes nothing.
    std::map<std::string, int, std::less<>> m_nextNumbers;
    std::vector<unsigned char> m_buffer;
};

// Where a walk puts what it finds.
struct Findings {
    CString* body;  // null: the text is not wanted, only whether it can be decoded
    CStringArray& fileNames;
    CStringArray* filePaths;  // null: names alone, no file is made
    CNewFiles& files;
    CFaultLog& faults;
    int depth = 0;  // related parts and attached mails around the entity
};

// The rest of an entity behind its Content-Type field.
struct Place {
    CEntity& entity;  // the entity, or the multipart around it
    int start;
    const CString& parameters;          // of its Content-Type
    CDelimiters* delimiters = nullptr;  // those of the multipart around it; null: it ends with the text
};

// A message or attached mail: the test for MIME 1.0, then the walk of its entity. range.top is always set.
int WalkMail(std::string_view text, const Findings& findings, Range& range);
// Any entity, by the Content-Type field at or behind start. A type without a route here gives no body and 1.
int WalkEntity(CEntity& entity, int start, const Findings& findings, Range& range);
// multipart/related (RFC 2387): walks every part; the first text that is not empty is the body.
int WalkRelated(const Place& place, const Findings& findings, Range& range);
// multipart/mixed (RFC 2046 5.1.3): the last text part without a name is the body, the others are attachments.
int WalkMixed(const Place& place, const Findings& findings, Range& range);
// multipart/alternative (RFC 2046 5.1.4): the first text/plain part is the body.
int WalkAlternative(const Place& place, const Findings& findings, Range& range);
// A text, up to the next delimiter.
int WalkBody(const Place& place, const Findings& findings, Range& range);

// Records the entity under its name, cleaned, and writes its decoded data to a new file. The data ends at the next
// delimiter or, in an entity that ends with the text, at the next empty line; range takes it. 0: the name stays.
int ExtractFile(const Place& place, CString name, const Findings& findings, Range& range);
// Records an attached mail under its subject, or its "name" where it has none, and writes it byte for byte to a file
// that ends in ".eml". 0: as above, or it cannot be read as a mail itself; then no name is recorded.
int ExtractMail(const Place& place, const Findings& findings, Range& range);

// Records that a part has no end: its fields run into the delimiter that is to end it, or so does the empty line behind
// them, where there is one; else the log stays. start lies behind the fields. Always 0.
int FailWithoutEnd(const Place& place, int start, int emptyLine, const CString& name, const Findings& findings);

// Walks a mail of its own, which lies depth levels deep, without making files. 0: it cannot be read; else subject takes
// its subject.
int ReadSubject(std::string_view text, int depth, CFaultLog& faults, CString& subject);

}  // namespace parser

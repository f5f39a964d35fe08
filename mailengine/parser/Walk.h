// Walk: the road of one Perse run through the structure of a message (RFC 2046), and the files it makes. Each function
// does what the operation of CEMailPerser does that it is named for, on the entity's text and with the boundary of the
// enclosing multipart as its delimiters, null for an entity that stands alone. One run, one thread.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <mailengine/parser/Scanning.h>
#include <mailengine/parser/Values.h>
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
    // extension. path takes its full path. 0: it cannot be made; then nothing was.
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
    int depth = 0;  // related parts and attached mails around the entity
};

struct Range {
    int top = -1;
    int end = -1;
};

int WalkEntity(CEntity& entity, int start, const Findings& findings, Range& range);
int WalkRelated(CEntity& entity, int start, const CString& parameters, const Findings& findings, Range& range);
int WalkMixed(CEntity& entity, int start, const CString& parameters, const Findings& findings, Range& range);
int WalkAlternative(CEntity& entity, int start, const CString& parameters, CString* body, Range& range);
int WalkBody(CEntity& entity, int start, const CString& parameters, CDelimiters* delimiters, CString* body,
             Range& range);

int ExtractFile(CEntity& entity, int start, const CString& parameters, CDelimiters* delimiters,
                const Findings& findings, Range& range);
int ExtractMail(CEntity& entity, int start, const CString& parameters, CDelimiters* delimiters,
                const Findings& findings, Range& range);

// Walks a mail of its own, which lies depth levels deep, without making files. 0: it cannot be read; else subject takes
// its subject.
int ReadSubject(std::string_view text, int depth, CString& subject);

}  // namespace parser

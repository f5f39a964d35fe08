#include <algorithm>
#include <cerrno>
#include <cstring>
#include <hostkit/characters/MailText.h>
#include <hostkit/letter/Diagnosis.h>
#include <iterator>
#include <string_view>

namespace hostkit {

namespace {

using Kind = MailFault::Kind;

// A % stands for the name of the fault.
struct Sentence {
    std::string_view text;
    Kind kind;
    bool isSearch = false;  // a NUL can hide what was searched for
};
constexpr Sentence kSentences[] = {
    {"it has 2 GiB or more", Kind::kTooLong},
    {"it is empty", Kind::kEmpty},
    {"it has no MIME-Version 1.0", Kind::kNoMimeVersion, true},
    {"its MIME-Version is %, not 1.0", Kind::kOtherMimeVersion},
    {"its parts nest deeper than can be read", Kind::kNestsTooDeep},
    {"the boundary parameter of a multipart is missing", Kind::kNoBoundary},
    {"no delimiter of its boundary % is there", Kind::kNoDelimiter, true},
    {"the closing delimiter is missing of boundary %", Kind::kNoClosingDelimiter, true},
    {"a part of type % in a multipart/mixed has no name", Kind::kPartWithoutName},
    {"an image (%) has no name", Kind::kImageWithoutName},
    {"no empty line stands behind its fields", Kind::kNoEmptyLine, true},
    {"the last attachment is empty, and its empty line belongs to the delimiter", Kind::kLastFileIsEmpty},
    {"the data of % has no line end behind it", Kind::kDataWithoutEnd, true},
    {"a text cannot be decoded", Kind::kTextNotDecoded},
    {"the attachment % cannot be decoded", Kind::kFileNotDecoded},
};

// A value of a message, the last bytes of a long one left out.
std::string Quoted(const CString& text) {
    constexpr int kShownBytes = 80;
    static_assert(kShownBytes < MailFault::kMaxNameBytes);
    const bool isLong = text.GetLength() > kShownBytes;
    return "'" + LineShown(text.Left(kShownBytes).View()) + (isLong ? "...'" : "'");
}

// The parts and attached mails around the fault, the outermost first.
std::string WayTo(const MailFault& fault) {
    std::string way;
    for (const int step : fault.path)
        way += step == 0 ? "the attached mail cannot be read: " : "part " + std::to_string(step) + ": ";
    return way;
}

// A message that is sound, but whose attachment does not become a file.
std::string FileText(const MailFault& fault, const std::filesystem::path& folder) {
    const std::string attachment = "the attachment " + Quoted(fault.name);
    if (fault.error == ENAMETOOLONG || fault.error == EILSEQ || fault.error == EINVAL)
        return attachment + " has a name that no file can have";
    const std::string place = folder.empty() ? "the folder for temporary files" : folder.native();
    return attachment + " cannot be written into " + place + ": " + std::strerror(fault.error);
}

}  // namespace

std::string FaultText(const MailFault& fault, const std::filesystem::path& folder) {
    if (fault.kind == Kind::kFileNotMade || fault.kind == Kind::kFileNotWritten) return FileText(fault, folder);
    if (fault.kind == Kind::kEmpty && fault.path.empty()) return "is empty";
    const auto* const sentence = std::find_if(std::begin(kSentences), std::end(kSentences),
                                              [&](const Sentence& row) { return row.kind == fault.kind; });
    std::string text(sentence != std::end(kSentences) ? sentence->text : "a part is damaged");
    if (const std::size_t name = text.find('%'); name != std::string::npos) text.replace(name, 1, Quoted(fault.name));
    const bool isHidden = sentence != std::end(kSentences) && sentence->isSearch && fault.holdsNul;
    return "cannot be read as a mail: " + WayTo(fault) + text +
           (isHidden ? "; it holds a NUL byte, behind which nothing is read" : "");
}

}  // namespace hostkit

#include <algorithm>
#include <cerrno>
#include <hostkit/characters/MailText.h>
#include <hostkit/characters/Words.h>
#include <hostkit/letter/Diagnosis.h>
#include <iterator>
#include <string_view>

namespace hostkit {

namespace {

using Kind = MailFault::Kind;

// {1} stands for the name of the fault.
struct Sentence {
    const char* text;
    Kind kind;
    bool isSearch = false;  // a NUL can hide what was searched for
};
constexpr Sentence kSentences[] = {
    {Marked("it has 2 GiB or more"), Kind::kTooLong},
    {Marked("it is empty"), Kind::kEmpty},
    {Marked("it has no MIME-Version 1.0"), Kind::kNoMimeVersion, true},
    {Marked("its MIME-Version is {1}, not 1.0"), Kind::kOtherMimeVersion},
    {Marked("its parts nest deeper than can be read"), Kind::kNestsTooDeep},
    {Marked("the boundary parameter of a multipart is missing"), Kind::kNoBoundary},
    {Marked("no delimiter of its boundary {1} is there"), Kind::kNoDelimiter, true},
    {Marked("the closing delimiter is missing of boundary {1}"), Kind::kNoClosingDelimiter, true},
    {Marked("a part of type {1} in a multipart/mixed has no name"), Kind::kPartWithoutName},
    {Marked("an image ({1}) has no name"), Kind::kImageWithoutName},
    {Marked("no empty line stands behind its fields"), Kind::kNoEmptyLine, true},
    {Marked("the last attachment is empty, and its empty line belongs to the delimiter"), Kind::kLastFileIsEmpty},
    {Marked("the data of {1} has no line end behind it"), Kind::kDataWithoutEnd, true},
    {Marked("a text cannot be decoded"), Kind::kTextNotDecoded},
    {Marked("the attachment {1} cannot be decoded"), Kind::kFileNotDecoded},
};

// A value of a message, the last bytes of a long one left out.
std::string Quoted(const CString& text) {
    constexpr int kShownBytes = 80;
    static_assert(kShownBytes < MailFault::kMaxNameBytes);
    const bool isLong = text.GetLength() > kShownBytes;
    return "'" + LineShown(text.Left(kShownBytes).View()) + (isLong ? "...'" : "'");
}

// The text behind the parts and attached mails around the fault, the outermost first.
std::string BehindItsWay(const MailFault& fault, std::string text) {
    for (auto step = fault.path.rbegin(); step != fault.path.rend(); ++step)
        text = *step == 0 ? Words("the attached mail cannot be read: {1}", text) : Words("part {1}: {2}", *step, text);
    return text;
}

// A message that is sound, but whose attachment does not become a file.
std::string FileText(const MailFault& fault, const std::filesystem::path& folder) {
    const std::string name = Quoted(fault.name);
    if (fault.error == ENAMETOOLONG || fault.error == EILSEQ || fault.error == EINVAL)
        return Words("the attachment {1} has a name that no file can have", name);
    const std::string place = folder.empty() ? Words("the folder for temporary files") : folder.native();
    return Words("the attachment {1} cannot be written into {2}: {3}", name, place, SystemWords(fault.error));
}

}  // namespace

std::string FaultText(const MailFault& fault, const std::filesystem::path& folder) {
    if (fault.kind == Kind::kFileNotMade || fault.kind == Kind::kFileNotWritten) return FileText(fault, folder);
    if (fault.kind == Kind::kEmpty && fault.path.empty()) return Words("is empty");
    const auto* const sentence = std::find_if(std::begin(kSentences), std::end(kSentences),
                                              [&](const Sentence& row) { return row.kind == fault.kind; });
    const bool isKnown = sentence != std::end(kSentences);
    const std::string text = Words(isKnown ? sentence->text : Marked("a part is damaged"), Quoted(fault.name));
    return Words(isKnown && sentence->isSearch && fault.holdsNul
                     ? Marked("cannot be read as a mail: {1}; it holds a NUL byte, behind which nothing is read")
                     : Marked("cannot be read as a mail: {1}"),
                 BehindItsWay(fault, text));
}

}  // namespace hostkit

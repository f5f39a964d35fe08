#include <algorithm>
#include <cerrno>
#include <new>

#include <mailengine/encoding/Language.h>
#include <mailengine/parser/TransferDecoder.h>
#include <mailengine/parser/Walk.h>
#include <mailengine/support/FileUtility.h>
#include <mailengine/support/platform/text/Characters.h>

namespace parser {
namespace {

using Kind = MailFault::Kind;

constexpr unsigned int kNewFile = CFile::modeCreate | CFile::modeWrite | CFile::typeBinary | CFile::createNew;
constexpr unsigned int kMailNameBytes = 64;  // with ".eml" and a number it fits every file system
// Data is decoded and written in pieces, so that it never stands in memory twice.
constexpr std::size_t kPieceBytes = 64 * 1024;

// The data of an entity: from the empty line behind its header block to its end.
int FindData(const Place& place, int behindFields, const CString& name, const Findings& findings, Range& range) {
    const std::string_view text = place.entity.Text();
    const int emptyLine = FindEmptyLine(text, behindFields);
    if (emptyLine == -1) return FailWithoutEnd(place, behindFields, -1, name, findings);
    range.top = emptyLine + 2;
    const int end = place.delimiters != nullptr ? place.delimiters->FindTop(range.top) : FindEmptyLine(text, range.top);
    if (end == -1) return FailWithoutEnd(place, behindFields, emptyLine, name, findings);
    range.end = end;
    return 1;
}

std::string_view DataOf(const Place& place, const Range& range) {
    return Mid(place.entity.Text(), range.top, range.end - range.top);
}

void WriteDecoded(CFile& file, std::string_view data, CTransferDecoder& decoder, unsigned char* buffer) {
    const auto write = [&](std::string_view bytes) { file.Write(bytes.data(), bytes.size()); };
    for (std::size_t piece = 0; !data.empty(); data.remove_prefix(piece)) {
        piece = decoder.Copies() ? data.size() : std::min(data.size(), kPieceBytes);
        write(decoder.Decode(data.substr(0, piece), buffer));
    }
    write(decoder.Finish(buffer));
}

// Runs what may raise an exception of the file layer. The result is the system's number of it, 0 if there was none.
template <class Step>
int ErrorOf(Step step) {
    try {
        step();
        return 0;
    } catch (CFileException* exception) {
        const int error = exception->m_lOsError;
        exception->Delete();
        return error != 0 ? error : EIO;
    } catch (CException* exception) {
        exception->Delete();
        return EIO;
    }
}

template <class Write>
int WriteNewFile(const Findings& findings, const CString& name, std::string_view extension, std::string_view data,
                 Write write) {
    CFile file;
    CString path;
    int error = findings.files.Create(file, name, extension, path);
    if (error != 0) return findings.faults.Record(Kind::kFileNotMade, data, name.View(), error);
    error = ErrorOf([&] { write(file); });
    const int closing = ErrorOf([&] { file.Close(); });
    if (error == 0) error = closing;
    if (error != 0) return findings.faults.Record(Kind::kFileNotWritten, data, name.View(), error);
    findings.filePaths->SetAtGrow(findings.filePaths->GetSize(), path);
    return 1;
}

// A refusal comes before the file is made, and so does the lack of memory for the buffer or the converted data.
int DecodeToFile(const Findings& findings, const CString& name, std::string_view data, const CString& encoding,
                 const CString& charset) {
    CTransferDecoder decoder(encoding.View());
    if (decoder.Refuses(data.size())) return findings.faults.Record(Kind::kFileNotDecoded, data, name.View());
    CString converted;
    auto& buffer = findings.files.Buffer();
    std::string_view rest = data;
    try {
        if (IsJapaneseCharset(charset.View())) {  // its escapes and its end reach over pieces
            (void)DecodeData(data, encoding.View(), charset.View(), converted);
            rest = converted.View();
            decoder = CTransferDecoder("");
        }
        if (!decoder.Copies()) buffer.resize(std::max(buffer.size(), decoder.MaxBytes(kPieceBytes)));
    } catch (const std::bad_alloc&) {
        return findings.faults.Record(Kind::kFileNotMade, data, name.View(), ENOMEM);
    }
    return WriteNewFile(findings, name, "", data,
                        [&](CFile& file) { WriteDecoded(file, rest, decoder, buffer.data()); });
}

CString NameOfMailFile(const CString& name) {
    CString cleaned = name;
    CFileUtility::ReplaceProhibitedWords(cleaned);
    CLanguage::CutSJIS(cleaned, static_cast<unsigned int>(cleaned.View().size()), kMailNameBytes, cleaned);
    return cleaned;
}

void Append(CStringArray& list, const CString& text) {
    list.SetAtGrow(list.GetSize(), text);
}

}  // namespace

int CNewFiles::Create(CFile& file, const CString& name, std::string_view extension, CString& path) {
    CFileException failure;
    const CString stem = m_folder + "\\" + static_cast<const char*>(name);
    // The folder's last byte must not make one character with the separator, nor may the name hold another one.
    const std::size_t separator = platform::FindLastCharacter(stem.View(), '\\');
    if (m_folder.IsEmpty() || separator != m_folder.View().size()) return ENOENT;
    std::string key(stem.View());
    key.append(1, '\0').append(extension);
    for (int& number = m_nextNumbers.try_emplace(std::move(key), 0).first->second;; ++number) {
        path = stem;
        if (number > 0) path.Format("%s_%d", stem, number);
        path += extension;
        if (file.Open(path, kNewFile, &failure)) break;
        if (!platform::LastOpenFoundPathTaken()) return failure.m_lOsError != 0 ? failure.m_lOsError : EIO;
    }
    return 0;
}

int FailWithoutEnd(const Place& place, int start, int emptyLine, const CString& name, const Findings& findings) {
    const std::string_view rest = Mid(place.entity.Text(), start);
    if (place.delimiters == nullptr)
        return findings.faults.Record(emptyLine == -1 ? Kind::kNoEmptyLine : Kind::kDataWithoutEnd, rest, name.View());
    const int end = place.delimiters->FindTop(start - 2);  // the CRLF behind the last field may belong to it
    if (end == -1) return 0;
    return findings.faults.Record(end == emptyLine ? Kind::kLastFileIsEmpty : Kind::kNoEmptyLine, rest, name.View());
}

int ExtractFile(const Place& place, CString name, const Findings& findings, Range& range) {
    CFileUtility::ReplaceProhibitedWords(name);
    Append(findings.fileNames, name);
    if (findings.filePaths == nullptr) return 1;
    int cur = place.start;
    const CString encoding = TakeTransferEncoding(place.entity.Text(), cur);
    if (!FindData(place, cur, name, findings, range)) return 0;
    return DecodeToFile(findings, name, DataOf(place, range), encoding,
                        GetParameter(place.parameters.View(), "charset"));
}

int ExtractMail(const Place& place, const Findings& findings, Range& range) {
    CString name = GetParameter(place.parameters.View(), "name");
    int cur = place.start;
    TakeTransferEncoding(place.entity.Text(), cur);  // for its place alone: an attached mail is taken as it stands
    if (findings.depth >= kMaxNesting)
        return findings.faults.Record(Kind::kNestsTooDeep, Mid(place.entity.Text(), cur), name.View());
    if (!FindData(place, cur, name, findings, range)) return 0;
    const std::string_view mail = DataOf(place, range);
    CString subject;
    if (!ReadSubject(mail, findings.depth + 1, findings.faults, subject)) return findings.faults.InAttachedMail();
    if (!subject.IsEmpty()) name = subject;
    Append(findings.fileNames, name);
    if (findings.filePaths == nullptr) return 1;
    return WriteNewFile(findings, NameOfMailFile(name), ".eml", mail,
                        [&](CFile& file) { file.Write(mail.data(), mail.size()); });
}

}  // namespace parser

#include <algorithm>
#include <new>

#include <mailengine/encoding/Base64Stream.h>
#include <mailengine/encoding/HexEscapes.h>
#include <mailengine/encoding/Language.h>
#include <mailengine/parser/EMailPerser.h>
#include <mailengine/parser/Walk.h>
#include <mailengine/support/FileUtility.h>
#include <mailengine/support/platform/text/Characters.h>

namespace parser {
namespace {

constexpr std::string_view kTransferEncoding = "Content-Transfer-Encoding:";
constexpr unsigned int kNewFile = CFile::modeCreate | CFile::modeWrite | CFile::typeBinary | CFile::createNew;
constexpr unsigned int kMailNameBytes = 64;  // with ".eml" and a number it fits every file system
// Data is decoded and written in pieces, so that it never stands in memory twice.
constexpr std::size_t kPieceBytes = 64 * 1024;
static_assert(CBase64Stream::MaxBytes(kPieceBytes) + CBase64Stream::kLastBytes <= kPieceBytes);

// The data of an entity: from the empty line behind its header block to its end.
bool FindData(const CEntity& entity, int behindFields, CDelimiters* delimiters, Range& range) {
    const int emptyLine = FindEmptyLine(entity.Text(), behindFields);
    if (emptyLine == -1) return false;
    range.top = emptyLine + 2;
    const int end = delimiters != nullptr ? delimiters->FindTop(range.top) : FindEmptyLine(entity.Text(), range.top);
    if (end == -1) return false;
    range.end = end;
    return true;
}

std::string_view DataOf(const CEntity& entity, const Range& range) {
    return Mid(entity.Text(), range.top, range.end - range.top);
}

// Where a piece of quoted-printable or percent-hex text may end, from wanted on: not inside an escape, nor between the
// CR of a soft line break and the byte that goes with it. wanted is 3 or more.
std::size_t PieceEnd(std::string_view text, std::size_t wanted, char escape) {
    for (std::size_t end = wanted; end < text.size(); ++end) {
        const bool isOpen = text[end - 1] == escape || text[end - 2] == escape;
        const bool dropsNext = text[end - 3] == escape && text[end - 1] == '\r';
        if (!isOpen && !dropsNext) return end;
    }
    return text.size();
}

template <class Form>
void WriteEscaped(CFile& file, std::string_view data, std::vector<unsigned char>& buffer) {
    while (!data.empty()) {
        const std::string_view piece = data.substr(0, PieceEnd(data, kPieceBytes, Form::kEscape));
        if (buffer.size() < piece.size()) buffer.resize(piece.size());
        file.Write(buffer.data(), hexescapes::Decoder<Form>::Decode(piece, buffer.data()));
        data.remove_prefix(piece.size());
    }
}

void WriteBase64(CFile& file, std::string_view data, std::vector<unsigned char>& buffer) {
    CBase64Stream stream;
    for (; !data.empty(); data.remove_prefix(std::min(data.size(), kPieceBytes)))
        file.Write(buffer.data(), stream.Decode(data.substr(0, kPieceBytes), buffer.data()));
    std::size_t last = 0;
    (void)stream.Finish(buffer.data(), last);  // data that it refuses never comes here
    file.Write(buffer.data(), last);
}

void WriteDecoded(CFile& file, std::string_view data, Encoding encoding, std::vector<unsigned char>& buffer) {
    switch (encoding) {
        case Encoding::kBase64:
            return WriteBase64(file, data, buffer);
        case Encoding::kQuotedPrintable:
            return WriteEscaped<hexescapes::QuotedPrintable>(file, data, buffer);
        case Encoding::kHex:
            return WriteEscaped<hexescapes::PercentHex>(file, data, buffer);
        case Encoding::kPlain:
            return file.Write(data.data(), data.size());
    }
}

// Runs what may raise an exception of the file layer, or run out of memory. 0: it did.
template <class Step>
int Guarded(Step step) {
    try {
        step();
        return 1;
    } catch (CException* exception) {
        exception->Delete();
        return 0;
    } catch (const std::bad_alloc&) {  // a piece of escapes without an end outgrew the buffer
        return 0;
    }
}

template <class Write>
int WriteNewFile(const Findings& findings, const CString& name, std::string_view extension, Write write) {
    CFile file;
    CString path;
    if (!findings.files.Create(file, name, extension, path)) return 0;
    const int written = Guarded([&] { write(file); });
    const int closed = Guarded([&] { file.Close(); });
    if (!written || !closed) return 0;
    findings.filePaths->SetAtGrow(findings.filePaths->GetSize(), path);
    return 1;
}

// A refusal comes before the file is made, and so does the lack of memory for the buffer or the converted data.
int DecodeToFile(const Findings& findings, const CString& name, std::string_view data, Encoding encoding,
                 const CString& charset) {
    if (RefusesDecoding(data, encoding)) return 0;
    CString converted;
    auto& buffer = findings.files.Buffer();
    try {
        if (IsJapaneseCharset(charset.View())) {  // its escapes and its end reach over pieces
            (void)DecodeData(data, encoding, charset.View(), converted);
            data = converted.View();
            encoding = Encoding::kPlain;
        }
        if (encoding != Encoding::kPlain) buffer.resize(std::max(buffer.size(), kPieceBytes));
    } catch (const std::bad_alloc&) {
        return 0;
    }
    return WriteNewFile(findings, name, "", [&](CFile& file) { WriteDecoded(file, data, encoding, buffer); });
}

CString NameOfMailFile(const CString& name) {
    CString cleaned = name;
    CFileUtility::ReplaceProhibitedWords(cleaned);
    CLanguage::CutSJIS(cleaned, static_cast<unsigned int>(cleaned.View().size()), kMailNameBytes, cleaned);
    return cleaned;
}

// Moves behind the Content-Transfer-Encoding field, if there is one, and gives its value.
CString TakeTransferEncoding(const CEntity& entity, int& cur) {
    CString encoding = "7bit";
    FindField(entity.Text(), cur, kTransferEncoding, encoding, cur);
    return encoding;
}

void Append(CStringArray& list, const CString& text) {
    list.SetAtGrow(list.GetSize(), text);
}

}  // namespace

int CNewFiles::Create(CFile& file, const CString& name, std::string_view extension, CString& path) {
    const CString stem = m_folder + "\\" + static_cast<const char*>(name);
    // The folder's last byte must not make one character with the separator, nor may the name hold another one.
    const std::size_t separator = platform::FindLastCharacter(stem.View(), '\\');
    if (m_folder.IsEmpty() || separator != m_folder.View().size()) return 0;
    std::string key(stem.View());
    key.append(1, '\0').append(extension);
    for (int& number = m_nextNumbers.try_emplace(std::move(key), 0).first->second;; ++number) {
        path = stem;
        if (number > 0) path.Format("%s_%d", stem, number);
        path += extension;
        if (file.Open(path, kNewFile)) break;
        if (!platform::LastOpenFoundPathTaken()) return 0;
    }
    return 1;
}

int ExtractFile(CEntity& entity, int start, const CString& parameters, CDelimiters* delimiters,
                const Findings& findings, Range& range) {
    CString name = GetParameter(parameters.View(), "name");
    if (name.IsEmpty()) name = GetNumberedParameter(parameters.View(), "name");
    if (name.IsEmpty()) return 0;
    CFileUtility::ReplaceProhibitedWords(name);
    Append(findings.fileNames, name);
    if (findings.filePaths == nullptr) return 1;
    int cur = start;
    const CString encoding = TakeTransferEncoding(entity, cur);
    if (!FindData(entity, cur, delimiters, range)) return 0;
    return DecodeToFile(findings, name, DataOf(entity, range), EncodingOf(encoding.View()),
                        GetParameter(parameters.View(), "charset"));
}

int ExtractMail(CEntity& entity, int start, const CString& parameters, CDelimiters* delimiters,
                const Findings& findings, Range& range) {
    CString name = GetParameter(parameters.View(), "name");
    int cur = start;
    TakeTransferEncoding(entity, cur);  // for its place alone: an attached mail is taken as it stands
    if (findings.depth >= kMaxNesting || !FindData(entity, cur, delimiters, range)) return 0;
    const std::string_view mail = DataOf(entity, range);
    CString subject;
    if (!ReadSubject(mail, findings.depth + 1, subject)) return 0;
    if (!subject.IsEmpty()) name = subject;
    Append(findings.fileNames, name);
    if (findings.filePaths == nullptr) return 1;
    return WriteNewFile(findings, NameOfMailFile(name), ".eml",
                        [&](CFile& file) { file.Write(mail.data(), mail.size()); });
}

}  // namespace parser

namespace {

template <class Extract>
int RunExtraction(Extract extract, const CString& text, int start, const char* tempPath, const CString& parameters,
                  const CString& boundary, CStringArray& fileNames, CStringArray* filePaths, int& bodyTop,
                  int& bodyEnd) {
    parser::CEntity entity(parser::TextOf(text));
    parser::CDelimiters delimiters(entity.Text(), parser::NameOf(boundary));
    parser::CNewFiles files(tempPath);
    parser::Range range{bodyTop, bodyEnd};
    const parser::Findings findings{nullptr, fileNames, filePaths, files};
    const int result = extract(entity, start, parameters, boundary.IsEmpty() ? nullptr : &delimiters, findings, range);
    bodyTop = range.top;
    bodyEnd = range.end;
    return result;
}

}  // namespace

int CEMailPerser::PerseFile(const CString& text, int start, const char* tempPath, const CString& parameters,
                            const CString& boundary, CStringArray& fileNames, CStringArray* filePaths, int& bodyTop,
                            int& bodyEnd) {
    return RunExtraction(&parser::ExtractFile, text, start, tempPath, parameters, boundary, fileNames, filePaths,
                         bodyTop, bodyEnd);
}

int CEMailPerser::PerseAttachedMail(const CString& text, int start, const char* tempPath, const CString& parameters,
                                    const CString& boundary, CStringArray& fileNames, CStringArray* filePaths,
                                    int& bodyTop, int& bodyEnd) {
    return RunExtraction(&parser::ExtractMail, text, start, tempPath, parameters, boundary, fileNames, filePaths,
                         bodyTop, bodyEnd);
}

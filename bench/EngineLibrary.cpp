#include <bench/Bench.h>
#include <bench/Libraries.h>
#include <vector>

#include <mailengine/parser/EMailPerser.h>
#include <mailengine/support/ProgressCallback.h>
#include <mailengine/support/platform/files/Path.h>
#include <mailengine/writer/EMailWriter.h>
#include <mailengine/writer/FileOutStream.h>

namespace {

class CTextStream : public COutputStream {
public:
    int Open() override { return 1; }
    void Close() override {}
    int WriteString(const char* text) override {
        m_text += text;
        return 1;
    }
    std::string Take() { return std::move(m_text); }

private:
    std::string m_text;
};

CString LibraryPath(const std::string& path) {
    CString result;
    std::string error;
    bench::Require(platform::ToLibraryPath(path, result, error) != 0, error);
    return result;
}

void Fill(CMailDoc& document, const bench::Letter& letter) {
    document.SetFromAddress(CAddress("", letter.fromName.c_str(), letter.fromAddress.c_str()));
    document.AddToAddress(CAddress("", letter.toName.c_str(), letter.toAddress.c_str()));
    document.SetSubject(letter.subject.c_str());
    document.SetBody(letter.body.c_str());
    document.SetMailerName("bench");
}

std::string Write(const bench::Letter& letter) {
    CMailDoc document;
    Fill(document, letter);
    CTextStream stream;
    CProgressCallback progress("", 0, nullptr);
    CString error;
    bench::Require(CEMailWriter(&stream, document, progress).Write(error) != 0, "mailengine cannot write");
    return stream.Take();
}

void WriteFile(const bench::Letter& letter, const std::string& attachment, const std::string& path) {
    CMailDoc document;
    Fill(document, letter);
    document.SetFiles({{LibraryPath(attachment), ""}});
    CFileOutStream stream(LibraryPath(path));
    CProgressCallback progress("", 1, nullptr);
    CString error;
    progress.Start(document.GetMailSize());
    bench::Require(stream.Open() != 0 && CEMailWriter(&stream, document, progress).Write(error) != 0,
                   "mailengine cannot write the file");
    stream.Close();
    bench::Require(stream.Failed() == 0, "mailengine lost bytes");
}

std::string Text(void (CMailDoc::*get)(CString&) const, const CMailDoc& document) {
    CString text;
    (document.*get)(text);
    return std::string(text.View());
}

// A mail that was opened names its sender in its summary.
CAddress SenderOf(const CMailDoc& document) {
    constexpr std::string_view kFrom = "From:";
    const std::string summary = Text(&CMailDoc::GetOriginalSummary, document);
    const std::size_t from = summary.find(kFrom) + kFrom.size();
    CString line(std::string_view(summary).substr(from, summary.find("\r\n", from) - from));
    line.TrimLeft();
    CAddress sender;
    sender.FromText(line);
    return sender;
}

bench::Letter Read(const CString& message, const std::string& folder) {
    CMailDoc document;
    CEMailPerser parser;
    bench::Require(parser.Perse(message, folder.empty() ? CString() : LibraryPath(folder), document, 0) != 0,
                   "mailengine cannot read");
    const CAddress from = SenderOf(document);
    const CAddress& to = *document.GetToAddress(0);
    return {std::string(from.GetDisplayName().View()), std::string(from.GetMailAddress().View()),
            std::string(to.GetDisplayName().View()),   std::string(to.GetMailAddress().View()),
            Text(&CMailDoc::GetSubject, document),     Text(&CMailDoc::GetBody, document)};
}

}  // namespace

const bench::Library bench::kEngine{kOurs, "CP932", Write, WriteFile, Read};

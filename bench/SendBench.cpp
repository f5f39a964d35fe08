// Sending to a sink on loopback beside curl's SMTP upload, with the plain write of the same bytes as the limit.
#include <algorithm>
#include <bench/Bench.h>
#include <cstdlib>
#include <netinet/in.h>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

#include <mailengine/model/MailDoc.h>
#include <mailengine/support/ProgressCallback.h>
#include <mailengine/support/platform/net/Socket.h>
#include <mailengine/transport/MailSendRecv.h>
#include <mailengine/transport/SmtpStream.h>
#include <mailengine/transport/TransparencyStream.h>
#include <mailengine/writer/EMailWriter.h>

namespace {

constexpr std::size_t kMessageBytes = 21'000'000;
constexpr int kSmallMails = 1000;
constexpr int kMailsOfOneCurl = 100;

// A server that takes what it gets and keeps nothing, one session at a time. Text that is no command is read to its
// end.
class Sink {
public:
    Sink() {
        sockaddr_in address{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
        socklen_t size = sizeof address;
        sockaddr* const any = reinterpret_cast<sockaddr*>(&address);
        bench::Require(bind(m_listener, any, size) == 0 && listen(m_listener, 16) == 0, "no port for the sink");
        getsockname(m_listener, any, &size);
        port = ntohs(address.sin_port);
        m_thread = std::thread([this] {
            for (int session; (session = accept(m_listener, nullptr, nullptr)) >= 0; close(session))
                Serve(session);
        });
    }
    ~Sink() {
        shutdown(m_listener, SHUT_RDWR);
        m_thread.join();
        close(m_listener);
    }

    int port = 0;

private:
    static void Say(int session, std::string_view text) {
        bench::Require(send(session, text.data(), text.size(), MSG_NOSIGNAL) > 0, "the sink was left alone");
    }
    void Serve(int session) {
        Say(session, "220 sink\r\n");
        std::string command(1 << 16, '\0');
        for (ssize_t got; (got = recv(session, command.data(), command.size(), 0)) > 0;) {
            const std::string_view text(command.data(), static_cast<std::size_t>(got));
            if (text == "DATA\r\n")
                TakeData(session);
            else if (text.ends_with("\r\n") && text.size() < 512)
                Say(session, text == "QUIT\r\n" ? "221 bye\r\n" : "250 sink\r\n");
        }
    }
    void TakeData(int session) {
        Say(session, "354 go\r\n");
        std::string data(1 << 18, '\0');
        std::string tail;
        while (tail != "\r\n.\r\n") {
            const ssize_t got = recv(session, data.data(), data.size(), 0);
            if (got <= 0) return;
            const std::size_t size = static_cast<std::size_t>(got);
            tail.append(data, size > 5 ? size - 5 : 0, std::min<std::size_t>(size, 5));
            if (tail.size() > 5) tail.erase(0, tail.size() - 5);
        }
        Say(session, "250 taken\r\n");
    }

    int m_listener = socket(AF_INET, SOCK_STREAM, 0);
    std::thread m_thread;
};

// A file for the contestants; gone at the end.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& bytes) {
        const int descriptor = mkstemp(path.data());
        bench::Require(write(descriptor, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()), path);
        close(descriptor);
    }
    ~TemporaryFile() { unlink(path.c_str()); }
    std::string path = "/tmp/mailengine-bench-XXXXXX";
};

class TextStream : public COutputStream {
public:
    int Open() override { return 1; }
    void Close() override {}
    int WriteString(const char* written) override { return text += written, 1; }
    std::string text;
};

void Address(CMailDoc& doc, int port) {
    doc.SetFromAddress(CAddress("", "Sender", "sender@example.test"));
    doc.AddToAddress(CAddress("", "", "recipient@example.test"));
    doc.SetSubject("A mail of a benchmark");
    doc.SetSendServer("127.0.0.1", port);
}

std::string MessageOf(const CMailDoc& doc) {
    TextStream stream;
    CProgressCallback progress("", 0, nullptr);
    CString error;
    bench::Require(CEMailWriter(&stream, doc, progress).Write(error) != 0, "the writer failed");
    return stream.text;
}

void SendDocument(const CMailDoc& doc) {
    CProgressCallback progress("", 0, nullptr);
    CString error;
    bench::Require(CMailSendRecv::SendWhole(doc, progress, error) != 0, "not sent");
}

// The text of a message in the writer's pieces: a line, and its CRLF.
void SendText(const std::string& text, int port) {
    CStringArray recipients;
    recipients.SetAtGrow(0, "recipient@example.test");
    CSmtpStream stream("127.0.0.1", port, "sender@example.test", recipients);
    CTransparencyStream lines(stream);
    bench::Require(lines.Open() != 0, "not opened");
    std::string line;
    for (std::size_t at = 0, end = 0; at < text.size(); at = end + 2) {
        end = std::min(text.find("\r\n", at), text.size());
        line.assign(text, at, end - at);
        bench::Require(lines.WriteString(line.c_str()) && lines.WriteString("\r\n"), "not written");
    }
    lines.Close();
    CString detail;
    stream.GetErrorDetail(detail);
    bench::Require(detail.IsEmpty(), "not taken");
}

void WritePlainly(const std::string& text, int port) {
    CSocket socket;
    char greeting[64];
    bench::Require(socket.Create() && socket.Connect("127.0.0.1", static_cast<unsigned short>(port)), "no sink");
    bench::Require(socket.Receive(greeting, sizeof greeting) > 0, "no greeting");
    const std::string_view data = "DATA\r\n", end = "\r\n.\r\n";
    bench::Require(socket.Send(data.data(), 6) == 6 && socket.Receive(greeting, sizeof greeting) > 0, "no sink");
    bench::Require(socket.Send(text.data(), static_cast<int>(text.size())) > 0 && socket.Send(end.data(), 5) == 5 &&
                       socket.Receive(greeting, sizeof greeting) > 0,
                   "not written");
}

std::string CurlUpload(const std::string& file, int port) {
    return "-s --url smtp://127.0.0.1:" + std::to_string(port) +
           " --mail-from sender@example.test --mail-rcpt recipient@example.test -T " + file;
}

void RunCommand(const std::string& command) {
    bench::Require(std::system(command.c_str()) == 0, command);
}

}  // namespace

int main(int argc, char** argv) {
    Sink sink;
    const bool hasCurl = std::system("command -v curl > /dev/null") == 0;

    CMailDoc large, small;
    Address(large, sink.port);
    const TemporaryFile attachment(std::string(kMessageBytes / 74 * 54, '\x5A'));
    CString path(attachment.path.c_str());
    path.Replace('/', '\\');
    large.SetFiles({{path, ""}});
    const std::string largeText = MessageOf(large);
    const TemporaryFile largeFile(largeText);
    for (const char* job : {"send/21M-document", "send/21M-text"}) {
        const bool document = std::string_view(job).ends_with("document");
        bench::Add(job, bench::kOurs, largeText.size(),
                   [&, document] { document ? SendDocument(large) : SendText(largeText, sink.port); });
        bench::Add(job, "tcp write", largeText.size(), [&] { WritePlainly(largeText, sink.port); });
        if (hasCurl)
            bench::Add(job, "curl", largeText.size(),
                       [&] { RunCommand("curl " + CurlUpload(largeFile.path, sink.port)); });
    }

    Address(small, sink.port);
    small.SetBody("A few words.\r\n");
    const TemporaryFile smallFile(MessageOf(small));
    bench::Add(
        "send/1000-small-mails", bench::kOurs, kSmallMails,
        [&] {
            for (int i = 0; i < kSmallMails; ++i)
                SendDocument(small);
        },
        bench::Unit::Items);
    std::string uploads = "curl " + CurlUpload(smallFile.path, sink.port);
    for (int i = 1; i < kMailsOfOneCurl; ++i)
        uploads += " --next " + CurlUpload(smallFile.path, sink.port);
    if (hasCurl)
        bench::Add(
            "send/1000-small-mails", "curl", kSmallMails,
            [&] {
                for (int i = 0; i < kSmallMails; i += kMailsOfOneCurl)
                    RunCommand(uploads);
            },
            bench::Unit::Items);
    return bench::Run(argc, argv);
}

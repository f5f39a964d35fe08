#include <hostkit/attachments/CarriedFiles.h>
#include <hostkit/characters/MailText.h>
#include <hostkit/characters/Words.h>
#include <hostkit/files/DescriptorStream.h>
#include <hostkit/files/Descriptors.h>
#include <hostkit/letter/SentCopy.h>
#include <hostkit/outbox/LocalLines.h>
#include <hostkit/outbox/Maildir.h>
#include <optional>

#include <mailengine/support/ProgressCallback.h>
#include <mailengine/support/platform/system/System.h>
#include <mailengine/writer/EMailWriter.h>

namespace hostkit {

namespace {

// A clock that stands, so that two writings of a mail are the same message.
class OneMoment : public CSystem {
public:
    OneMoment() : m_nTime(Get().Time()), m_pBefore(Install(this)) {}
    OneMoment(const OneMoment&) = delete;
    OneMoment& operator=(const OneMoment&) = delete;
    ~OneMoment() override { Install(m_pBefore); }

    std::int64_t Time() override { return m_nTime; }
    int LocalTime(std::int64_t time, LocalFields& fields) override {
        return m_pBefore != nullptr ? m_pBefore->LocalTime(time, fields) : CSystem::LocalTime(time, fields);
    }
    std::uint32_t ProcessId() override { return m_pBefore != nullptr ? m_pBefore->ProcessId() : CSystem::ProcessId(); }
    int HostName(char* buffer, int size) override {
        return m_pBefore != nullptr ? m_pBefore->HostName(buffer, size) : CSystem::HostName(buffer, size);
    }
    void Sleep(unsigned int milliseconds) override {
        m_pBefore != nullptr ? m_pBefore->Sleep(milliseconds) : CSystem::Sleep(milliseconds);
    }

private:
    std::int64_t m_nTime;
    CSystem* m_pBefore;
};

void WriteTo(int descriptor, CMailDoc& doc) {
    const CarriedFiles carried(doc, Copied::Needed);
    const AttachmentWatch watch = carried.Watch();
    DescriptorStream file(descriptor);
    LocalLines lines(file);
    WatchedStream stream(lines, watch);
    CProgressCallback progress("", 0, nullptr);
    CString error;
    const int written = CEMailWriter(&stream, doc, progress).Write(error);
    file.Close();
    if (file.Failed() != 0) throw Failure(FailureKind::Output, {}, SystemWords(file.Failed()));
    watch.Check();
    if (!written) throw Failure(FailureKind::Input, {}, carried.InUsersNames(OneLine(error)));
}

}  // namespace

struct SentCopy::State {
    explicit State(const std::filesystem::path& folder) : maildir(folder) {}

    Maildir maildir;
    OneMoment moment;
    std::optional<Maildir::Message> message;
    std::string warning;

    void Warn(const Failure& failure) {
        message.reset();
        warning = Words("no copy of the mail is kept in {1}: {2}", maildir.Folder(), std::string(failure.what()));
    }
};

SentCopy::SentCopy(const std::filesystem::path& maildir) : m_pState(std::make_unique<State>(maildir)) {}

SentCopy::~SentCopy() = default;

void SentCopy::Write(CMailDoc& doc) {
    Begin([&](int descriptor) { WriteTo(descriptor, doc); });
}

void SentCopy::Write(const std::string& message) {
    Begin([&](int descriptor) {
        std::string lines;
        for (std::size_t i = 0; i < message.size(); ++i)
            if (message[i] != '\r' || i + 1 == message.size() || message[i + 1] != '\n') lines += message[i];
        if (const int error = WriteAll(descriptor, lines); error != 0)
            throw Failure(FailureKind::Output, {}, SystemWords(error));
    });
}

void SentCopy::Begin(const std::function<void(int descriptor)>& write) {
    try {
        m_pState->message.emplace(m_pState->maildir.NewMessage());
        write(m_pState->message->Descriptor());
    } catch (const Failure& failure) {
        m_pState->Warn(failure);
    }
}

std::string SentCopy::Keep(const Outcome& sent) {
    const bool isUnknown = sent.state == Outcome::State::Unknown;
    if (!sent && !isUnknown) return "";
    try {
        if (m_pState->message) m_pState->message->Deliver(isUnknown ? "FS" : "S");
    } catch (const Failure& failure) {
        m_pState->Warn(failure);
    }
    return m_pState->warning;
}

}  // namespace hostkit

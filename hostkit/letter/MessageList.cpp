#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <hostkit/characters/Failure.h>
#include <hostkit/characters/Words.h>
#include <hostkit/files/Descriptors.h>
#include <hostkit/files/MessageFile.h>
#include <hostkit/files/MessageSource.h>
#include <hostkit/letter/MessageList.h>
#include <sys/stat.h>
#include <unistd.h>

namespace hostkit {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kFrom = "From ";
constexpr std::size_t kFirstBytes = 16 * 1024;  // the header of nearly every mail ends in them
constexpr std::size_t kMostBytes = 1024 * 1024;

[[noreturn]] void RefuseUnreadable(const fs::path& file, int error) {
    throw Failure(FailureKind::Input, {Field::None, file.native()}, Words("cannot be read: {1}", SystemWords(error)));
}

// Appends up to bytes of the file. false: it ended, or cannot be read, which errno tells.
bool ReadMore(int descriptor, std::size_t bytes, std::string& text) {
    const std::size_t before = text.size();
    text.resize(before + bytes);
    std::size_t done = 0;
    ssize_t count = 0;
    while (done < bytes && (count = ReadSome(descriptor, text.data() + before + done, bytes - done)) > 0)
        done += static_cast<std::size_t>(count);
    text.resize(before + done);
    if (count == 0) errno = 0;
    return done == bytes;
}

bool IsMbox(const fs::path& file) {
    const Descriptor opened = OpenToRead(file);
    std::string top;
    return opened && ReadMore(opened.Number(), kFrom.size(), top) && top == kFrom;
}

// What lies behind kMostBytes of a header is not worth the wait.
std::string HeaderOf(const fs::path& file, std::uint64_t& size) {
    const Descriptor opened = OpenToRead(file);
    struct stat status;
    if (!opened || fstat(opened.Number(), &status) != 0) RefuseUnreadable(file, errno);
    size = static_cast<std::uint64_t>(status.st_size);
    std::string text;
    for (std::size_t bytes = kFirstBytes; text.size() < kMostBytes; bytes = text.size()) {
        const bool isMore = ReadMore(opened.Number(), bytes, text);
        if (!isMore && errno != 0) RefuseUnreadable(file, errno);
        if (!isMore || EndOfHeader(text) < text.size()) break;
    }
    return text;
}

void FillFrom(std::string_view message, MessageList::Entry& entry) {
    entry.glance = GlanceAt(message);
    if (message.find_first_not_of("\r\n") == std::string_view::npos)
        entry.fault = Words("is empty");
    else if (!entry.glance.isMessage)
        entry.fault = Words("is no message: it does not begin with header fields");
}

}  // namespace

// The messages of one mbox, and the file as it was when the first of them was read.
class MessageList::Mbox {
public:
    explicit Mbox(fs::path file) : m_file(std::move(file)) {}

    const fs::path& File() const { return m_file; }

    // Empty: there is none.
    std::optional<Entry> Next() {
        if (m_isLost) return std::nullopt;
        Entry entry;
        entry.file = m_file;
        entry.isRead = true;
        entry.number = ++m_nLast;
        try {
            if (!m_pSource) Open();
            const std::optional<MessageSource::Message> message = m_pSource->Next();
            if (!message) return std::nullopt;
            entry.at = message->begin;
            entry.size = message->bytes.size();
            m_nEnd = entry.at + entry.size;
            FillFrom(message->bytes, entry);
        } catch (const Failure& failure) {
            m_isLost = !m_pSource;
            entry.fault = failure.Fact();
        }
        return entry;
    }

    std::size_t Percent() const {
        const auto size = static_cast<std::uint64_t>(std::max<off_t>(m_status.st_size, 1));
        return static_cast<std::size_t>(std::min(m_nEnd, size) * 100 / size);
    }

    bool IsAsItWas(const struct stat& now) const {
        return now.st_size == m_status.st_size && now.st_mtim.tv_sec == m_status.st_mtim.tv_sec &&
               now.st_mtim.tv_nsec == m_status.st_mtim.tv_nsec && now.st_ino == m_status.st_ino;
    }

private:
    void Open() {
        if (stat(m_file.c_str(), &m_status) != 0) RefuseUnreadable(m_file, errno);
        m_pSource = std::make_unique<MessageSource>(m_file);
    }

    fs::path m_file;
    struct stat m_status {};
    std::unique_ptr<MessageSource> m_pSource;
    std::uint64_t m_nEnd = 0;
    std::size_t m_nLast = 0;
    bool m_isLost = false;
};

MessageList::MessageList(const fs::path& path) {
    const MessageSource source(path);
    for (const fs::path& file : source.Files()) {
        if (!source.IsMaildir() && IsMbox(file)) {
            m_mboxes.push_back(std::make_unique<Mbox>(file));
        } else {
            Entry entry;
            entry.file = file;
            m_entries.push_back(std::move(entry));
        }
    }
    m_nFiles = m_entries.size();
}

MessageList::~MessageList() = default;

bool MessageList::ReadNext() {
    while (m_nNext < m_nFiles && m_entries[m_nNext].isRead)
        ++m_nNext;
    if (m_nNext == m_nFiles) return ReadNextOfMbox();
    Read(m_nNext);
    return true;
}

bool MessageList::ReadNextOfMbox() {
    for (; m_nMbox < m_mboxes.size(); ++m_nMbox) {
        std::optional<Entry> entry = m_mboxes[m_nMbox]->Next();
        if (!entry) continue;
        m_entries.push_back(std::move(*entry));
        return true;
    }
    return false;
}

void MessageList::Read(std::size_t index) {
    Entry& entry = m_entries[index];
    if (entry.isRead) return;
    try {
        const std::string header = HeaderOf(entry.file, entry.size);
        FillFrom(header, entry);
    } catch (const Failure& failure) {
        entry.fault = failure.Fact();
    }
    entry.isRead = true;
    ++m_nRead;
}

int MessageList::Percent() const {
    const std::size_t all = m_nFiles + m_mboxes.size();
    if (all == 0) return 100;
    const std::size_t current = m_nMbox < m_mboxes.size() ? m_mboxes[m_nMbox]->Percent() : 0;
    return static_cast<int>(((m_nRead + m_nMbox) * 100 + current) / all);
}

std::string MessageList::Message(std::size_t index) const {
    const Entry& entry = m_entries[index];
    if (index < m_nFiles) return ReadMessage(entry.file);
    const Descriptor opened = OpenToRead(entry.file);
    struct stat status;
    if (!opened || fstat(opened.Number(), &status) != 0) RefuseUnreadable(entry.file, errno);
    const auto isMine = [&](const auto& mbox) { return mbox->File() == entry.file; };
    const bool isAsItWas = (*std::find_if(m_mboxes.begin(), m_mboxes.end(), isMine))->IsAsItWas(status);
    std::string bytes;
    if (isAsItWas && lseek(opened.Number(), static_cast<off_t>(entry.at), SEEK_SET) < 0)
        RefuseUnreadable(entry.file, errno);
    if (!isAsItWas || !ReadMore(opened.Number(), entry.size, bytes)) {
        throw Failure(FailureKind::Input, {Field::None, entry.file.native()},
                      Words("was written to since it was listed; open it again"));
    }
    return bytes;
}

}  // namespace hostkit

#include <algorithm>
#include <cerrno>
#include <hostkit/characters/Failure.h>
#include <hostkit/characters/Words.h>
#include <hostkit/files/Descriptors.h>
#include <hostkit/files/MessageFile.h>
#include <hostkit/files/MessageSource.h>
#include <new>
#include <string_view>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>
#include <utility>

namespace hostkit {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kFrom = "From ";
constexpr std::string_view kNextFrom = "\nFrom ";
constexpr std::size_t kPieceBytes = 64 * 1024;

[[noreturn]] void Refuse(const fs::path& name, int error) {
    throw Failure(FailureKind::Input, {Field::None, name.native()}, Words("cannot be read: {1}", SystemWords(error)));
}

// What gives bytes for ever is no message, but would be read for one up to its largest size.
void CheckEnds(int descriptor, const fs::path& name) {
    struct stat status;
    if (fstat(descriptor, &status) != 0 || !S_ISCHR(status.st_mode) || isatty(descriptor) != 0) return;
    if (status.st_rdev == makedev(1, 3)) return;  // /dev/null, which ends at once
    throw Failure(FailureKind::Input, {Field::None, name.native()},
                  Words("is a device, which may never end; give a file"));
}

// The empty line that an mbox puts behind each message.
void DropLastEmptyLine(std::string& message) {
    for (const std::string_view end : {"\n\n", "\n\r\n"}) {
        if (!std::string_view(message).ends_with(end)) continue;
        message.resize(message.size() - end.size() + 1);
        return;
    }
}

}  // namespace

// What one file holds.
class MessageSource::Stream {
public:
    Stream(int lent, fs::path name) : m_nDescriptor(lent), m_name(std::move(name)), m_bMayBeMbox(true) {}
    Stream(Descriptor own, fs::path name, bool mayBeMbox)
        : m_own(std::move(own)), m_nDescriptor(m_own.Number()), m_name(std::move(name)), m_bMayBeMbox(mayBeMbox) {}

    const fs::path& Name() const { return m_name; }
    std::uint64_t Begin() const { return m_nBegin; }

    bool IsMbox() {
        while (m_bMayBeMbox && !m_bDone && Rest().size() < kFrom.size() && Fill()) {
        }
        return m_bMayBeMbox && Rest().starts_with(kFrom);
    }

    std::optional<std::string> Next() {
        if (m_bDone) return std::nullopt;
        if (IsMbox()) {
            m_nTop += std::min(Find("\n", 0), Rest().size());
            const std::size_t end = Find(kNextFrom, 0);
            m_bDone = end == std::string_view::npos;
            std::string message = Take(m_bDone ? end : end + 1);
            message.erase(0, 1);  // the end of the From line
            ++m_nBegin;
            DropLastEmptyLine(message);
            return message;
        }
        while (Fill())
            DropWhatIsTooMuch();
        m_bDone = true;
        return Take(std::string_view::npos);
    }

private:
    std::string_view Rest() const { return std::string_view(m_text).substr(m_nTop); }

    bool Fill() {
        m_nErased += m_nTop;
        m_text.erase(0, m_nTop);
        m_nTop = 0;
        const std::size_t size = m_text.size();
        m_text.resize(size + kPieceBytes);
        const ssize_t count = ReadSome(m_nDescriptor, m_text.data() + size, kPieceBytes);
        m_text.resize(size + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        if (count < 0) {
            const int error = errno;
            m_bDone = true;
            Refuse(m_name, error);
        }
        return count > 0;
    }

    // The offset in Rest of the first mark, which stands behind the line end in front.
    std::size_t Find(std::string_view mark, std::size_t from) {
        for (;;) {
            const std::size_t at = Rest().find(mark, from);
            if (at != std::string_view::npos) return at;
            const std::size_t seen = Rest().size();
            if (!Fill()) return std::string_view::npos;
            from = DropWhatIsTooMuch() ? 0 : seen - std::min(seen, mark.size() - 1);
        }
    }

    // Memory does not grow with an endless message.
    bool DropWhatIsTooMuch() {
        if (Rest().size() <= kMaxMessageBytes) return false;
        m_bTooLarge = true;
        m_nErased += m_text.size() - kNextFrom.size();
        m_text.erase(0, m_text.size() - kNextFrom.size());
        return true;
    }

    // The first bytes of Rest, which then begins behind them.
    std::string Take(std::size_t bytes) {
        m_nBegin = m_nErased + m_nTop;
        const bool isAll = m_nTop == 0 && bytes >= m_text.size();
        std::string message = isAll ? std::exchange(m_text, {}) : std::string(Rest().substr(0, bytes));
        if (isAll)
            m_nErased += message.size();
        else
            m_nTop += message.size();
        if (std::exchange(m_bTooLarge, false))
            throw Failure(FailureKind::Message, {Field::None, m_name.native()},
                          Words("is 2 GiB or larger, which no message may be"));
        return message;
    }

    Descriptor m_own;
    int m_nDescriptor;
    fs::path m_name;
    std::string m_text;
    std::size_t m_nTop = 0;       // what stands in front was given
    std::uint64_t m_nErased = 0;  // bytes of the file in front of m_text
    std::uint64_t m_nBegin = 0;   // of the message that was given last, in the file
    bool m_bMayBeMbox;
    bool m_bTooLarge = false;  // the message that is being read
    bool m_bDone = false;
};

MessageSource::MessageSource(const fs::path& path) {
    std::error_code none;
    if (!fs::is_directory(path, none)) {
        m_files.push_back(path);
        return;
    }
    m_bMany = true;
    m_bMaildir = fs::is_directory(path / "new", none) && fs::is_directory(path / "cur", none);
    if (m_bMaildir) {
        AddFolder(path / "new");
        AddFolder(path / "cur");
    } else {
        AddFolder(path);
    }
}

MessageSource::MessageSource(int descriptor, const std::string& name)
    : m_pStream(std::make_unique<Stream>(descriptor, name)) {
    CheckEnds(descriptor, name);
}

MessageSource::~MessageSource() = default;

void MessageSource::AddFolder(const fs::path& folder) {
    const std::size_t first = m_files.size();
    std::error_code error;
    for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
        std::error_code gone;
        if (at->path().filename().native().front() != '.' && at->is_regular_file(gone)) m_files.push_back(at->path());
    }
    if (error) Refuse(folder, error.value());
    std::sort(m_files.begin() + static_cast<std::ptrdiff_t>(first), m_files.end());
}

// false: there is none.
bool MessageSource::OpenNext() {
    if (m_nNext == m_files.size()) return false;
    const fs::path& file = m_files[m_nNext++];
    Descriptor opened = OpenToRead(file);
    if (!opened) {
        ++m_nLast;
        Refuse(file, errno);
    }
    CheckEnds(opened.Number(), file);
    m_pStream = std::make_unique<Stream>(std::move(opened), file, !m_bMaildir);
    return true;
}

std::optional<MessageSource::Message> MessageSource::Next() {
    while (m_pStream || OpenNext()) {
        try {
            const bool isMbox = m_pStream->IsMbox();
            m_bMany |= isMbox;
            ++m_nLast;
            std::optional<std::string> bytes = m_pStream->Next();
            const fs::path& file = m_pStream->Name();
            if (bytes)
                return Message{file, isMbox ? Words("{1}, message {2}", file, m_nLast) : file.native(), m_nLast,
                               std::move(*bytes), m_pStream->Begin()};
            --m_nLast;
        } catch (const std::bad_alloc&) {  // what is left of this file would need as much
            m_pStream.reset();
            throw;
        }
        m_pStream.reset();
    }
    return std::nullopt;
}

}  // namespace hostkit

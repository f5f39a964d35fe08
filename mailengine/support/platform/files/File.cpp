#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <new>
#include <string>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <mailengine/support/platform/files/File.h>
#include <mailengine/support/platform/files/FileSystem.h>
#include <mailengine/support/platform/files/Path.h>
#include <mailengine/support/platform/system/System.h>

namespace {

constexpr std::size_t kBufferBytes = 64 * 1024;
// Room is asked for in steps: small at first, since most mails are, then doubled.
constexpr std::int64_t kFirstStep = 16 * 1024;
constexpr std::int64_t kLargestStep = 4 * 1024 * 1024;
constexpr int kNone = -1;

// Holds back, in this thread, the signals that a write can raise beside its error: one for the file size limit, one for
// a pipe without a reader. Either would end the host. A signal that waited before stays.
class WriteSignals {
public:
    WriteSignals() {
        sigset_t pending;
        sigemptyset(&m_held);
        sigpending(&pending);
        for (const int signal : {SIGXFSZ, SIGPIPE})
            if (!sigismember(&pending, signal)) sigaddset(&m_held, signal);
        pthread_sigmask(SIG_BLOCK, &m_held, &m_before);
    }
    ~WriteSignals() {
        const int error = errno;
        if (m_raised) {
            const timespec noWait{};
            while (sigtimedwait(&m_held, nullptr, &noWait) < 0 && errno == EINTR) {
            }
        }
        pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
        errno = error;
    }
    WriteSignals(const WriteSignals&) = delete;
    WriteSignals& operator=(const WriteSignals&) = delete;

    void Note(int error) { m_raised = error == EFBIG || error == EPIPE; }

private:
    sigset_t m_held;
    sigset_t m_before;
    bool m_raised = false;
};

// What a call gave, called again as long as a signal interrupted it.
template <class Call>
auto Uninterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

int OpenDescriptor(const char* path, int flags) {
    const std::string native = platform::ToNativePath(path);
    return Uninterrupted([&] { return open(native.c_str(), flags | O_CLOEXEC | O_NOCTTY, 0666); });
}

int Refuse(int error) {
    errno = error;
    return 0;
}

// Closes descriptor and keeps the error that made it useless.
void Abandon(int descriptor) {
    const int error = errno;
    close(descriptor);
    errno = error;
}

// Locks a regular file, shared or alone; whether another CFile stands against it. A file system without locks is no
// reason to refuse.
bool IsLockedOut(int descriptor, int lock) {
    return Uninterrupted([&] { return flock(descriptor, lock | LOCK_NB); }) != 0 && errno == EWOULDBLOCK;
}

// Whether a descriptor opened for reading may be read, which never waits for a writer.
int AdmitReader(int descriptor) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0) return 0;
    if (S_ISDIR(status.st_mode)) return Refuse(EISDIR);
    if (S_ISFIFO(status.st_mode)) return Refuse(ESPIPE);
    if (S_ISREG(status.st_mode) && IsLockedOut(descriptor, LOCK_SH)) return 0;
    return fcntl(descriptor, F_SETFL, 0) == 0;  // O_NONBLOCK was for the open alone
}

// Locks and empties a regular file.
int TakeOver(int descriptor) {
    if (IsLockedOut(descriptor, LOCK_EX)) return 0;
    struct stat status {};
    if (fstat(descriptor, &status) != 0) return 0;
    return status.st_size == 0 || Uninterrupted([&] { return ftruncate(descriptor, 0); }) == 0;
}

// The offset behind the last byte that the process may write.
std::int64_t SizeLimit() {
    rlimit limit{};
    constexpr auto kLargest = std::numeric_limits<std::int64_t>::max();
    if (getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur > static_cast<rlim_t>(kLargest)) return kLargest;
    return static_cast<std::int64_t>(limit.rlim_cur);
}

}  // namespace

CFile::~CFile() {
    try {
        Close();
    } catch (CException* exception) {
        exception->Delete();
    }
}

int CFile::Open(const char* path, unsigned int flags, CFileException* error) {
    constexpr unsigned int kReading = modeRead | shareDenyNone | typeBinary;
    constexpr unsigned int kWriting = modeCreate | modeWrite | typeBinary;
    int opened = 0;
    if (m_descriptor != kNone)
        opened = Refuse(EBUSY);
    else if (flags == kReading)
        opened = OpenForReading(path);
    else if ((flags & ~createNew) == kWriting)
        opened = OpenForWriting(path, (flags & createNew) != 0);
    else
        opened = Refuse(EINVAL);
    if (!opened && error != nullptr) error->m_lOsError = errno;
    return opened;
}

int CFile::OpenForReading(const char* path) {
    const int descriptor = OpenDescriptor(path, O_RDONLY | O_NONBLOCK);
    if (descriptor < 0) return 0;
    if (!AdmitReader(descriptor)) {
        Abandon(descriptor);
        return 0;
    }
    m_descriptor = descriptor;
    m_writes = false;
    m_begin = m_end = 0;
    return 1;
}

int CFile::OpenForWriting(const char* path, bool isNew) {
    // A FIFO that nobody reads fails to open: waiting for a reader would hold the host's window. O_NONBLOCK is for the
    // open alone.
    const int descriptor = OpenDescriptor(path, O_WRONLY | O_CREAT | O_NONBLOCK | (isNew ? O_EXCL | O_NOFOLLOW : 0));
    if (descriptor < 0) return 0;
    struct stat status {};
    const bool known = fstat(descriptor, &status) == 0 && fcntl(descriptor, F_SETFL, 0) == 0;
    if (!known || (S_ISREG(status.st_mode) && !TakeOver(descriptor))) {
        Abandon(descriptor);
        return 0;
    }
    m_descriptor = descriptor;
    m_writes = true;
    m_promises = S_ISREG(status.st_mode);
    m_begin = m_end = m_room = 0;
    m_position = m_promised = 0;
    return 1;
}

int CFile::MakeBuffer() {
    if (m_buffer == nullptr) m_buffer.reset(new (std::nothrow) char[kBufferBytes]);
    return m_buffer != nullptr;
}

unsigned int CFile::Read(void* buffer, unsigned int count) {
    if (m_writes) throw new CFileException(EBADF);
    char* const out = static_cast<char*>(buffer);
    std::size_t done = 0;
    while (done < count) {
        const std::size_t got = ReadSome(out + done, count - done);
        if (got == 0) break;
        done += got;
    }
    return static_cast<unsigned int>(done);
}

// At least one of the next bytes, at most count, by one call of the system at the most. 0: the end.
std::size_t CFile::ReadSome(char* buffer, std::size_t count) {
    if (m_begin == m_end) {
        if (count >= kBufferBytes || !MakeBuffer()) return ReadThrough(buffer, count);
        m_end = ReadThrough(m_buffer.get(), kBufferBytes);
        m_begin = 0;
    }
    const std::size_t taken = std::min(m_end - m_begin, count);
    std::memcpy(buffer, m_buffer.get() + m_begin, taken);
    m_begin += taken;
    return taken;
}

std::size_t CFile::ReadThrough(char* buffer, std::size_t count) {
    const ssize_t got = Uninterrupted([&] { return read(m_descriptor, buffer, count); });
    if (got < 0) throw new CFileException(errno);
    return static_cast<std::size_t>(got);
}

void CFile::Append(const char* data, std::size_t count) {
    const int appended = TryAppend(data, count);
    m_room = Room();
    if (!appended) throw new CFileException(errno);
}

// The bytes of the buffer that the file system holds room for; 0 while there is no buffer.
std::size_t CFile::Room() const {
    return static_cast<std::size_t>(std::min<std::int64_t>(m_promised - m_position, kBufferBytes));
}

int CFile::TryAppend(const char* data, std::size_t count) {
    if (m_descriptor == kNone || !m_writes) return Refuse(EBADF);
    // Most files of a mail come in one piece: for these, asking for room and giving back the rest costs more than all.
    if (m_position == 0 && m_end == 0) return WriteThrough(data, count);
    while (count > 0) {
        if (m_end == Room()) {
            if (!Flush()) return 0;
            if (count >= kBufferBytes || !PromiseRoom()) return WriteThrough(data, count);
        }
        const std::size_t taken = std::min(Room() - m_end, count);
        std::memcpy(m_buffer.get() + m_end, data, taken);
        m_end += taken;
        data += taken;
        count -= taken;
    }
    return 1;
}

// Makes room behind the last byte of an empty buffer, if there is none. 0: none to be had, now or later.
int CFile::PromiseRoom() {
    if (Room() > 0) return 1;
    if (!m_promises || !MakeBuffer()) return 0;
    const std::int64_t step = std::clamp(m_promised, kFirstStep, kLargestStep);
    const std::int64_t length = std::min(step, SizeLimit() - m_promised);
    const auto ask = [&] { return fallocate(m_descriptor, FALLOC_FL_KEEP_SIZE, m_promised, length); };
    m_promises = length > 0 && Uninterrupted(ask) == 0;
    if (m_promises) m_promised += length;
    return m_promises;
}

// Hands the buffer to the system. 0: what did not go stays in the buffer.
int CFile::Flush() {
    const std::size_t waiting = m_end;
    if (waiting == 0) return 1;
    const std::int64_t before = m_position;
    const int flushed = WriteThrough(m_buffer.get(), waiting);
    const int error = errno;
    m_end = waiting - static_cast<std::size_t>(m_position - before);
    std::memmove(m_buffer.get(), m_buffer.get() + (waiting - m_end), m_end);
    errno = error;
    return flushed;
}

// Hands count bytes to the system; the position tells how many went.
int CFile::WriteThrough(const char* data, std::size_t count) {
    WriteSignals signals;
    while (count > 0) {
        const ssize_t done = Uninterrupted([&] { return write(m_descriptor, data, count); });
        if (done <= 0) {
            if (done == 0) return Refuse(EIO);  // a device that takes nothing would be asked for ever
            signals.Note(errno);
            return 0;
        }
        data += done;
        count -= static_cast<std::size_t>(done);
        m_position += done;
        m_promised = std::max(m_promised, m_position);
    }
    return 1;
}

void CFile::Close() {
    if (m_descriptor == kNone) return;
    const int flushed = !m_writes || Flush();
    int error = flushed ? 0 : errno;
    // Room that was asked for and not used goes back. A file system that does not take it costs room, not bytes.
    if (m_writes && m_promised > m_position) (void)Uninterrupted([&] { return ftruncate(m_descriptor, m_position); });
    // Some file systems tell only here that bytes were lost. After EINTR the descriptor is closed all the same.
    if (close(m_descriptor) != 0 && errno != EINTR && error == 0) error = errno;
    m_descriptor = kNone;
    m_writes = false;
    m_begin = m_end = m_room = 0;
    m_position = m_promised = 0;
    m_buffer.reset();
    if (error != 0) throw new CFileException(error);
}

int CFile::GetStatus(const char* path, CFileStatus& status) {
    struct stat found {};
    if (stat(platform::ToNativePath(path).c_str(), &found) != 0) return 0;
    status.m_size = S_ISREG(found.st_mode) ? found.st_size : 0;
    status.m_attribute = S_ISDIR(found.st_mode) ? platform::FILE_ATTRIBUTE_DIRECTORY : platform::FILE_ATTRIBUTE_NORMAL;
    return 1;
}

bool platform::LastOpenFoundPathTaken() {
    return GetLastError() == EEXIST;
}

bool platform::LastOpenFoundFileLocked() {
    return GetLastError() == EWOULDBLOCK;
}

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <glib.h>
#include <hostkit/characters/Utf8.h>
#include <hostkit/characters/Words.h>
#include <hostkit/files/Descriptors.h>
#include <hostkit/outbox/MailProgram.h>
#include <memory>
#include <poll.h>
#include <spawn.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace hostkit {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kPauseMilliseconds = 50;         // between two questions
constexpr std::chrono::seconds kGrace{2};      // for a program to put away what it has begun
constexpr std::size_t kMaxWordsBytes = 4'096;  // of a program's words; what comes behind them is read and dropped

[[noreturn]] void Refuse(const MailProgram& program, int error) {
    throw Failure(FailureKind::Program, {Field::None, program.path.native()},
                  Words("no mail can be given to this program: {1}", SystemWords(error)));
}

std::string OneLineOf(std::string_view text) {
    std::string line;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view piece = text.substr(0, end);
        piece = piece.substr(0, piece.find_last_not_of(" \r\t") + 1);
        if (!piece.empty()) line += (line.empty() ? "" : " ") + Shown(piece);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return line;
}

// What the new process is made of: no descriptor but its three, no signal that this program ignores or blocks.
class Spawning {
public:
    Spawning(int input, int output) {
        posix_spawn_file_actions_init(&m_actions);
        posix_spawnattr_init(&m_attributes);
        posix_spawn_file_actions_adddup2(&m_actions, input, STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&m_actions, output, STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&m_actions, output, STDERR_FILENO);
        posix_spawn_file_actions_addclosefrom_np(&m_actions, STDERR_FILENO + 1);
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&m_attributes, &signals);
        sigfillset(&signals);
        posix_spawnattr_setsigdefault(&m_attributes, &signals);
        posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSID);
    }
    Spawning(const Spawning&) = delete;
    Spawning& operator=(const Spawning&) = delete;
    ~Spawning() {
        posix_spawn_file_actions_destroy(&m_actions);
        posix_spawnattr_destroy(&m_attributes);
    }

    // 0, or the number (errno) of the failure.
    int Run(const std::string& program, const std::vector<std::string>& arguments, pid_t& process) const {
        std::vector<char*> texts;
        texts.reserve(arguments.size() + 1);
        for (const std::string& argument : arguments)
            texts.push_back(const_cast<char*>(argument.c_str()));  // which posix_spawn leaves as it is
        texts.push_back(nullptr);
        return posix_spawn(&process, program.c_str(), &m_actions, &m_attributes, texts.data(), environ);
    }

private:
    posix_spawn_file_actions_t m_actions{};
    posix_spawnattr_t m_attributes{};
};

// Whether anybody reads a file, also by a descriptor of their own: the offset of ours does not tell that.
class ReadingWatch {
public:
    explicit ReadingWatch(const std::filesystem::path& file) : m_events(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        m_bWatches = m_events && inotify_add_watch(m_events.Number(), file.c_str(), IN_ACCESS) >= 0;
    }

    // True too where the system has no watch left.
    bool WasRead() const {
        inotify_event event;  // of a watched file: without a name behind it
        return !m_bWatches || read(m_events.Number(), &event, sizeof event) > 0;
    }

private:
    Descriptor m_events;
    bool m_bWatches = false;
};

// A program that runs, from its beginning to its end.
class Child {
public:
    Child(const MailProgram& program, const std::vector<std::string>& arguments, const Descriptor& message)
        : m_message(message) {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) Refuse(program, errno);
        m_words = Descriptor(ends[0]);
        const Descriptor output(ends[1]);
        // The program writes as any program does; this end alone does not wait.
        (void)fcntl(output.Number(), F_SETFL, 0);
        const int error = Spawning(message.Number(), output.Number()).Run(program.path, arguments, m_nProcess);
        if (error != 0) Refuse(program, error);
        m_end = Descriptor(static_cast<int>(syscall(SYS_pidfd_open, m_nProcess, 0)));  // none: the pauses do
    }

    void Wait(const std::function<bool(std::uint64_t)>& goOn) {
        while (!HasEnded()) {
            if (!m_bStopped && !goOn(BytesRead())) Stop();
            std::array<pollfd, 2> events{pollfd{m_end.Number(), POLLIN, 0}, pollfd{m_words.Number(), POLLIN, 0}};
            (void)poll(events.data(), events.size(), kPauseMilliseconds);
            TakeWords();
        }
        TakeWords();
        if (m_bStopped) EndAll();
    }

    std::uint64_t BytesRead() const {
        const off_t at = lseek(m_message.Number(), 0, SEEK_CUR);
        return at > 0 ? static_cast<std::uint64_t>(at) : 0;
    }

    ProgramResult Result(std::uint64_t bytes, bool wasRead) const {
        using State = ProgramResult::State;
        const int status = WIFSIGNALED(m_nStatus) ? -WTERMSIG(m_nStatus) : WEXITSTATUS(m_nStatus);
        const bool isWhole = BytesRead() >= bytes;
        State state = status == 0 && wasRead ? State::Taken : State::NotTaken;
        if (m_bLost || (status != 0 && isWhole && (m_bStopped || status < 0)))
            state = State::Unknown;
        else if (status != 0 && m_bStopped)
            state = State::Cancelled;
        return {state, status, OneLineOf(m_strWords)};
    }

private:
    // All of the processes get the signal. The message stays open for them: none takes a stop for the message's end.
    void Stop() {
        m_bStopped = true;
        m_killTime = Clock::now() + kGrace;
        (void)kill(-m_nProcess, SIGTERM);
    }

    void KillInTime() {
        if (m_bStopped && Clock::now() >= m_killTime) (void)kill(-m_nProcess, SIGKILL);
    }

    bool HasEnded() {
        KillInTime();
        const pid_t ended = waitpid(m_nProcess, &m_nStatus, WNOHANG);
        m_bLost = ended < 0 && errno == ECHILD;  // a host that ignores SIGCHLD never learns the status
        return ended == m_nProcess || m_bLost;
    }

    // Of a program that was stopped, what it began may still run.
    void EndAll() {
        while (kill(-m_nProcess, 0) == 0 && Clock::now() < m_killTime)
            (void)poll(nullptr, 0, kPauseMilliseconds / 10);
        (void)kill(-m_nProcess, SIGKILL);
    }

    void TakeWords() {
        std::array<char, 4'096> piece;
        for (;;) {
            const ssize_t count = read(m_words.Number(), piece.data(), piece.size());
            if (count <= 0) {
                if (count == 0) m_words = Descriptor();  // its end would end every pause
                return;
            }
            m_strWords.append(piece.data(),
                              std::min(static_cast<std::size_t>(count), kMaxWordsBytes - m_strWords.size()));
        }
    }

    const Descriptor& m_message;
    Descriptor m_words;
    Descriptor m_end;
    pid_t m_nProcess = -1;
    int m_nStatus = 0;
    bool m_bStopped = false;
    bool m_bLost = false;
    Clock::time_point m_killTime;
    std::string m_strWords;
};

}  // namespace

MailProgram ProgramNamed(const std::string& name) {
    const std::unique_ptr<char, decltype(&g_free)> found(
        name.find('/') == std::string::npos ? g_find_program_in_path(name.c_str()) : nullptr, &g_free);
    return {found ? found.get() : name};
}

void CheckProgram(const MailProgram& program) {
    struct stat status;
    if (stat(program.path.c_str(), &status) != 0) Refuse(program, errno);
    if (!S_ISREG(status.st_mode)) Refuse(program, EACCES);
    if (faccessat(AT_FDCWD, program.path.c_str(), X_OK, AT_EACCESS) != 0) Refuse(program, errno);
}

ProgramResult RunProgram(const MailProgram& program, const std::string& sender,
                         const std::vector<std::string>& recipients, const std::filesystem::path& message,
                         const std::function<bool(std::uint64_t bytes)>& goOn) {
    // Behind "--" no recipient is an option, and what follows "-f" is its value, whatever it begins with.
    std::vector<std::string> arguments{program.path.native(), "-i", "-f", sender, "--"};
    arguments.insert(arguments.end(), recipients.begin(), recipients.end());
    const Descriptor file(open(message.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status;
    if (!file || fstat(file.Number(), &status) != 0) Refuse(program, errno);
    const ReadingWatch watch(message);
    Child child(program, arguments, file);
    child.Wait(goOn);
    return child.Result(static_cast<std::uint64_t>(status.st_size), watch.WasRead());
}

}  // namespace hostkit

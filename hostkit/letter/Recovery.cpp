#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <glib.h>
#include <hostkit/characters/Words.h>
#include <hostkit/letter/Draft.h>
#include <hostkit/letter/Recovery.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace hostkit {

namespace {

namespace fs = std::filesystem;

constexpr char kLockName[] = "window-XXXXXX.lock";
constexpr char kLockEnd[] = ".lock";
constexpr char kDraftEnd[] = ".draft";

[[noreturn]] void Fail(const fs::path& folder, int error) {
    throw Failure(FailureKind::Target, {Field::None, folder.native()},
                  Words("nothing can be kept here: {1}", SystemWords(error)));
}

fs::path DraftOf(fs::path lock) {
    return lock.replace_extension(kDraftEnd);
}

// The parents are as the user has them; the folder itself shows nobody what is being written.
void Make(const fs::path& folder) {
    std::error_code error;
    fs::create_directories(folder.parent_path(), error);
    if (error) Fail(folder, error.value());
    if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) Fail(folder, errno);
}

bool Lock(const Descriptor& file) {
    return flock(file.Number(), LOCK_EX | LOCK_NB) == 0;
}

}  // namespace

fs::path RecoveryFolder() {
    return fs::path(g_get_user_state_dir()) / "mailengine" / "recovery";
}

Recovery::Recovery(const fs::path& folder) {
    Make(folder);
    std::string name = folder / kLockName;
    m_lock = Descriptor(mkostemps(name.data(), sizeof kLockEnd - 1, O_CLOEXEC));
    if (!m_lock || !Lock(m_lock)) Fail(folder, errno);
    m_draft = DraftOf(name);
}

Recovery::Recovery(fs::path draft, Descriptor lock) : m_draft(std::move(draft)), m_lock(std::move(lock)) {}

Recovery::~Recovery() {
    if (m_bStays) return;
    // The lock goes last: without it another program may take the draft.
    (void)unlink(m_draft.c_str());
    (void)unlink(fs::path(m_draft).replace_extension(kLockEnd).c_str());
}

void Recovery::Keep(const Letter& letter) {
    if (letter == m_last) return;
    SaveDraft(letter, m_draft);
    m_last = letter;
}

Letter Recovery::Kept() const {
    return OpenDraft(m_draft);
}

std::vector<std::unique_ptr<Recovery>> Recovery::LeftIn(const fs::path& folder) {
    std::vector<std::unique_ptr<Recovery>> left;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        const fs::path& lock = entry->path();
        if (lock.extension() != kLockEnd) continue;
        Descriptor file(open(lock.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW));
        if (!file || !Lock(file)) continue;
        const fs::path draft = DraftOf(lock);
        // A window that is being opened has made its lock and not yet taken it; it has kept nothing either.
        std::error_code missing;
        if (fs::exists(draft, missing)) left.emplace_back(new Recovery(draft, std::move(file)));
    }
    return left;
}

}  // namespace hostkit

// Recovery: what is being typed, in a file that outlives a crash. Each window has one of its own, locked while it
// lives, so that another program, or the next start, can tell what nobody writes at any more. One thread.
#pragma once

#include <filesystem>
#include <hostkit/files/Descriptors.h>
#include <hostkit/letter/Letter.h>
#include <memory>
#include <vector>

namespace hostkit {

// $XDG_STATE_HOME/mailengine/recovery; without that variable, or where it is no absolute path, ~/.local/state stands
// in.
HOSTKIT_API std::filesystem::path RecoveryFolder();

class HOSTKIT_API Recovery {
public:
    // A new one in the folder, which is made, for this user alone, if it is missing. Nothing is kept yet. Throws
    // Failure.
    explicit Recovery(const std::filesystem::path& folder);
    Recovery(const Recovery&) = delete;
    Recovery& operator=(const Recovery&) = delete;
    // What was kept goes: the window was closed, and nothing is to be lost any more.
    ~Recovery();

    // Keeps the letter, as SaveDraft does, in place of what was kept before; nothing for one that is kept already.
    // Throws Failure.
    void Keep(const Letter& letter);
    // What was kept stays behind the object's end, for the next start.
    void Leave(bool stays = true) { m_bStays = stays; }
    // The letter that was kept. Throws Failure.
    Letter Kept() const;

    // What programs that are gone left in the folder, each of them this program's from now on. Empty where there is no
    // folder. Throws nothing: what cannot be had stays where it is.
    static std::vector<std::unique_ptr<Recovery>> LeftIn(const std::filesystem::path& folder);

private:
    Recovery(std::filesystem::path draft, hostkit::Descriptor lock);

    std::filesystem::path m_draft;
    hostkit::Descriptor m_lock;  // on a file of its own: saving puts another file in the draft's place
    Letter m_last;
    bool m_bStays = false;
};

}  // namespace hostkit

// Outcome: what came of a work that takes its time and can be cancelled: saving and sending. Such a work throws nothing
// but std::bad_alloc; all else of the kit throws Failure.
#pragma once

#include <filesystem>
#include <functional>
#include <hostkit/characters/Failure.h>
#include <optional>
#include <string>

namespace hostkit {

struct Outcome {
    enum class State {
        Done,
        Cancelled,
        Failed,
        Unknown,  // the whole mail went out and no verdict came: it may have been taken
    };

    State state = State::Done;
    std::string text{};                // for the user, in UTF-8: a warning, empty for none, or why it was not done
    std::filesystem::path file{};      // what was, or was to be, written; empty for a mail that was sent
    std::optional<Failure> failure{};  // of a work that failed or is unknown: text is its sentence

    explicit operator bool() const { return state == State::Done; }
};

// Asked on the thread of the work, whenever the percentage done (0 to 100) grows and, while a server is waited for,
// some 20 times a second. false cancels: it is not asked again, and the work ends within a moment. It may not throw,
// nor touch the document. An empty one leaves it to the installed window system (CWindowSystem) to show a dialog, if
// any is.
using Progress = std::function<bool(int percent)>;

}  // namespace hostkit

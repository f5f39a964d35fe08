// ProgressOperation: one work of the engine under a progress dialog, be it a callback's or a window's.
#pragma once

#include <hostkit/letter/CallbackWindows.h>
#include <optional>
#include <string_view>

#include <mailengine/support/ProgressCallback.h>

namespace hostkit {

class ProgressOperation {
public:
    // Opens the dialog for so many bytes, if there is anybody to see it. caption is UTF-8; progress is lent.
    ProgressOperation(std::string_view caption, unsigned int bytes, const Progress& progress);

    CProgressCallback& Engine() { return m_operation; }
    // Shows the end of a work that was done. Else the dialog goes as it stands.
    void Complete();
    bool IsCancelled() { return m_operation.UserCanceled() != 0; }

private:
    std::optional<CallbackWindows> m_windows;  // outlives the dialog
    CProgressCallback m_operation;
};

}  // namespace hostkit

#include <hostkit/characters/CodePage.h>
#include <hostkit/letter/ProgressOperation.h>

namespace hostkit {

namespace {

// The built-in window system shows nothing, but its dialogs take their time.
bool HasWindows() {
    CWindowSystem* const installed = CWindowSystem::Install(nullptr);
    CWindowSystem::Install(installed);
    return installed != nullptr;
}

}  // namespace

ProgressOperation::ProgressOperation(std::string_view caption, unsigned int bytes, const Progress& progress)
    : m_operation(ToCodePage(caption, Extent::Line, Missing::Refuse, {}), 1, nullptr) {
    if (progress) m_windows.emplace(progress);
    if (HasWindows()) m_operation.Start(bytes);
}

void ProgressOperation::Complete() {
    if (m_windows)
        m_windows->Finish();  // a callback needs no pause in which its user sees the full bar
    else
        m_operation.Complete();
}

}  // namespace hostkit

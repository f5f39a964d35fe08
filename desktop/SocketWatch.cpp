#include <desktop/SocketWatch.h>

#include <mailengine/support/platform/windows/WindowSystem.h>

namespace desktop {

namespace {

int FlagsOf(int events) {
    int flags = wxEVENT_SOURCE_EXCEPTION;
    if ((events & CWindowSystem::kReadable) != 0) flags |= wxEVENT_SOURCE_INPUT;
    if ((events & CWindowSystem::kWritable) != 0) flags |= wxEVENT_SOURCE_OUTPUT;
    return flags;
}

}  // namespace

SocketWatch::SocketWatch(int descriptor, int events)
    : m_pSource(wxEventLoopBase::AddSourceForFD(descriptor, this, FlagsOf(events))) {}

void SocketWatch::Stop() {
    m_bReady = true;
    m_pSource.reset();
}

}  // namespace desktop

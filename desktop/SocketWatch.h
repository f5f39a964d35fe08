// SocketWatch: looks at a descriptor from within the toolkit's loop, until it is ready for the first time.
#pragma once

#include <memory>
#include <wx/evtloop.h>
#include <wx/evtloopsrc.h>

namespace desktop {

class SocketWatch : private wxEventLoopSourceHandler {
public:
    // events are those of CWindowSystem::WaitForSocket. The descriptor is open, and lent.
    SocketWatch(int descriptor, int events);
    SocketWatch(const SocketWatch&) = delete;
    SocketWatch& operator=(const SocketWatch&) = delete;
    ~SocketWatch() override = default;

    // False: the loop cannot watch this descriptor.
    bool Watches() const { return m_pSource != nullptr || m_bReady; }
    // True from the moment at which the loop found it ready, or in trouble.
    bool Ready() const { return m_bReady; }

private:
    void OnReadWaiting() override { Stop(); }
    void OnWriteWaiting() override { Stop(); }
    void OnExceptionWaiting() override { Stop(); }
    // Nobody reads before the wait is over, and a wait inside this one would find the loop busy with it for ever.
    void Stop();

    std::unique_ptr<wxEventLoopSource> m_pSource;
    bool m_bReady = false;
};

}  // namespace desktop

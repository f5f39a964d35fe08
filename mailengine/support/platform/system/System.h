// CSystem: the clock, the zone, the process and the machine's name, the only facts of the surroundings that enter a
// message. A test installs its own and so fixes a message to the byte. Install before other threads use the
// library; the built-in system itself can be asked from any thread.
#pragma once

#include <cstdint>

#include <mailengine/support/platform/base/Export.h>

class MAILENGINE_API CSystem {
public:
    // A time of the local zone, as people write it: month and day from 1, weekday from 0 for Sunday.
    struct LocalFields {
        int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0, weekday = 0;
        // Seconds that the zone's standard time lies west of UTC, in summer too. Japan has -32400.
        std::int32_t secondsWest = 0;
    };

    virtual ~CSystem() = default;

    // Seconds since 1970-01-01 00:00:00 UTC.
    virtual std::int64_t Time();
    // Looks the local zone up and splits time by it, summer time included. 0: the time cannot be told; fields stay as
    // they were.
    virtual int LocalTime(std::int64_t time, LocalFields& fields);
    // The number of this process.
    virtual std::uint32_t ProcessId();
    // Puts the machine's name and a NUL into buffer, of size bytes. 0 on success; else buffer is not to be used.
    virtual int HostName(char* buffer, int size);
    // Holds the calling thread; signals do not shorten it.
    virtual void Sleep(unsigned int milliseconds);

    // The installed system, the built-in one if there is none.
    static CSystem& Get();
    // Makes system, lent until the next Install, the one that Get gives; null brings the built-in one back. The
    // result is what was installed before, null for the built-in one.
    static CSystem* Install(CSystem* system);
};

namespace platform {

// The number of the calling thread's last failure (errno on this system), socket failures too.
MAILENGINE_API int GetLastError();

}  // namespace platform

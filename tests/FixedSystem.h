// CFixedSystem: a system that stands still, installed while it lives, so that a message is the same to the byte.
#pragma once

#include <cstring>
#include <vector>

#include <mailengine/support/platform/system/System.h>

class CFixedSystem : public CSystem {
public:
    CFixedSystem() : m_before(Install(this)) {}
    ~CFixedSystem() override { Install(m_before); }
    CFixedSystem(const CFixedSystem&) = delete;
    CFixedSystem& operator=(const CFixedSystem&) = delete;

    std::int64_t Time() override { return time; }
    int LocalTime(std::int64_t, LocalFields& out) override {
        out = fields;
        return 1;
    }
    std::uint32_t ProcessId() override { return 4660; }
    int HostName(char* buffer, int size) override {
        if (hostName == nullptr || static_cast<int>(std::strlen(hostName)) >= size) return -1;
        std::strcpy(buffer, hostName);
        return 0;
    }
    void Sleep(unsigned int milliseconds) override { sleeps.push_back(milliseconds); }

    std::int64_t time = 0x6AFE5149;  // 2026-11-19 10:30:49 in Japan
    LocalFields fields = {2026, 11, 19, 10, 30, 49, 4, -32400};
    const char* hostName = "pc.example.test";
    std::vector<unsigned int> sleeps;

private:
    CSystem* const m_before;
};

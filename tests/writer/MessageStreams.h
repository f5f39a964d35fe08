// Streams for the writer's tests: one keeps what it gets, call by call, and can be told to fail.
#pragma once

#include <string>
#include <vector>

#include <mailengine/writer/OutputStream.h>

class CMemoryStream : public COutputStream {
public:
    explicit CMemoryStream(std::size_t failingCall = 0) : m_failingCall(failingCall) {}

    int Open() override { return 1; }
    void Close() override {}
    int WriteString(const char* text) override {
        if (calls.size() + 1 == m_failingCall) failed = true;
        calls.emplace_back(failed ? "" : text);
        return failed ? 0 : 1;
    }
    std::string Text() const {
        std::string text;
        for (const std::string& call : calls)
            text += call;
        return text;
    }

    std::vector<std::string> calls;
    bool failed = false;

private:
    const std::size_t m_failingCall;  // from this call on nothing is taken; 0: never
};

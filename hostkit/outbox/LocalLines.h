// LocalLines: a message with the line ends of this system in front of another stream: each CRLF, and each CR or LF that
// stands alone, becomes LF, also where a CRLF comes in two pieces. One thread.
#pragma once

#include <string>

#include <mailengine/writer/OutputStream.h>

namespace hostkit {

class LocalLines : public COutputStream {
public:
    // target lives as long.
    explicit LocalLines(COutputStream& target) : m_target(target) {}

    [[nodiscard]] int Open() override { return m_target.Open(); }
    void Close() override { m_target.Close(); }
    [[nodiscard]] int WriteString(const char* text) override;

private:
    COutputStream& m_target;
    bool m_bBehindCr = false;
    std::string m_strLines;
};

}  // namespace hostkit

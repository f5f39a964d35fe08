// DescriptorStream: a mail on its way to an open file descriptor: a file, a pipe, a device. It keeps the number of the
// first failure, since a full disk or a closed pipe may show only when the last bytes leave. One thread.
#pragma once

#include <string>

#include <mailengine/writer/OutputStream.h>

namespace hostkit {

class DescriptorStream : public COutputStream {
public:
    // descriptor is lent; the stream neither opens nor closes it.
    explicit DescriptorStream(int descriptor) : m_nDescriptor(descriptor) {}
    // Drops what is still buffered: only Close hands it on.
    ~DescriptorStream() override = default;

    [[nodiscard]] int Open() override { return 1; }
    // Hands on what is buffered. Ask Failed for its result.
    void Close() override;
    // 0: a hand-over failed, now or before.
    [[nodiscard]] int WriteString(const char* text) override;

    // The error number (errno) of the first failure; 0: every byte so far is handed on or buffered.
    int Failed() const { return m_nError; }

private:
    void Flush();

    int m_nDescriptor;
    int m_nError = 0;
    std::string m_strBuffer;
};

}  // namespace hostkit

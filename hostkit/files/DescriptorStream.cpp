#include <cerrno>
#include <hostkit/files/DescriptorStream.h>
#include <unistd.h>

namespace hostkit {

namespace {

constexpr std::size_t kBufferBytes = 64 * 1024;  // a Base64 line has 74 bytes: few system calls for many lines

}  // namespace

void DescriptorStream::Close() {
    Flush();
}

int DescriptorStream::WriteString(const char* text) {
    if (m_nError != 0) return 0;
    if (text != nullptr) m_strBuffer += text;
    if (m_strBuffer.size() >= kBufferBytes) Flush();
    return m_nError == 0 ? 1 : 0;
}

void DescriptorStream::Flush() {
    for (std::size_t done = 0; done < m_strBuffer.size() && m_nError == 0;) {
        const ssize_t count = write(m_nDescriptor, m_strBuffer.data() + done, m_strBuffer.size() - done);
        if (count >= 0) {
            done += static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            m_nError = errno;
        }
    }
    m_strBuffer.clear();
}

}  // namespace hostkit

#include <hostkit/files/DescriptorStream.h>
#include <hostkit/files/Descriptors.h>

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
    if (m_nError == 0) m_nError = WriteAll(m_nDescriptor, m_strBuffer);
    m_strBuffer.clear();
}

}  // namespace hostkit

#include <cstring>

#include <mailengine/support/platform/base/Exception.h>
#include <mailengine/writer/FileOutStream.h>

CFileOutStream::CFileOutStream(const char* path) : m_strPath(path) {}

CFileOutStream::~CFileOutStream() {
    CFileOutStream::Close();
}

int CFileOutStream::Open() {
    if (m_bOpen) return 1;
    m_bFailed = 0;
    m_bOpen = m_file.Open(m_strPath, CFile::modeCreate | CFile::modeWrite | CFile::typeBinary);
    return m_bOpen;
}

void CFileOutStream::Close() {
    if (!m_bOpen) return;
    m_bOpen = 0;
    try {
        m_file.Close();
    } catch (CException* exception) {
        exception->Delete();
        m_bFailed = 1;
    }
}

int CFileOutStream::WriteString(const char* text) {
    if (!m_bOpen) return 0;
    try {
        m_file.Write(text, text == nullptr ? 0 : std::strlen(text));
        return 1;
    } catch (CException* exception) {
        exception->Delete();
        m_bFailed = 1;
        return 0;
    }
}

#include <mailengine/support/platform/windows/FileDialog.h>

CFileDialog::CFileDialog(int open, const char* defaultExtension, const char* fileName, const char* filter, CWnd* parent)
    : m_request{open, defaultExtension, fileName, filter}, m_pParent(parent) {}

int CFileDialog::DoModal() {
    return CWindowSystem::Get().RunFileDialog(CWnd::HandleOf(m_pParent), m_request, m_strPathName);
}

// CException and CFileException: what the file layer raises. An exception is raised as a pointer to an object of the
// heap: whoever catches it calls Delete.
#pragma once

#include <mailengine/support/platform/base/CmdTarget.h>
#include <mailengine/support/platform/base/Export.h>

class MAILENGINE_API CException : public CObject {
public:
    ~CException() override;
    // Frees a caught exception.
    void Delete() { delete this; }
};

class MAILENGINE_API CFileException : public CException {
public:
    explicit CFileException(int error = 0) : m_lOsError(error) {}
    ~CFileException() override;

    // The number of the failure, of the kind that platform::GetLastError gives; 0 for none.
    int m_lOsError;
};

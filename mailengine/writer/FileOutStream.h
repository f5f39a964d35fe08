// CFileOutStream: the stream that writes a mail to a file. No exception leaves it. One stream, one thread.
#pragma once

#include <mailengine/support/platform/base/Export.h>
#include <mailengine/support/platform/files/File.h>
#include <mailengine/support/platform/text/String.h>
#include <mailengine/writer/OutputStream.h>

class MAILENGINE_API CFileOutStream : public COutputStream {
public:
    // A closed stream for the file at path, in code page 932 with backslashes. A null path is an empty one.
    explicit CFileOutStream(const char* path);
    // Closes an open file.
    ~CFileOutStream() override;

    // Creates the file or empties the one that is there, unless the stream is open. 0: it cannot be written.
    [[nodiscard]] int Open() override;
    // Closes the file; ask Failed whether all bytes reached it.
    void Close() override;
    // As COutputStream::WriteString, in one write of the file. A failure leaves the stream open, for Close to end.
    [[nodiscard]] int WriteString(const char* text) override;

    // Whether a write or the last flush at Close has failed since the stream was opened, so that the file lacks bytes.
    // The last word is the one after Close.
    [[nodiscard]] int Failed() const { return m_bFailed; }

private:
    CString m_strPath;
    CFile m_file;
    int m_bOpen = 0;
    int m_bFailed = 0;
};

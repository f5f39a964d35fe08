// CObject and CDocument: the little of the framework's document that a mail document stands on, which is the modified
// flag. The class record, the archive and the message map are there for the framework and carry no logic.
#pragma once

#include <mailengine/support/platform/base/CmdTarget.h>
#include <mailengine/support/platform/base/Export.h>

class MAILENGINE_API CDocument : public CCmdTarget {
public:
    CDocument() = default;
    CDocument(const CDocument&) = delete;
    CDocument& operator=(const CDocument&) = delete;

    const CRuntimeClass* GetRuntimeClass() const override;
    static const CRuntimeClass classCDocument;

    // Whether the document was changed since it was made, cleared or saved.
    virtual int IsModified() { return m_bModified; }
    virtual void SetModifiedFlag(int modified = 1) { m_bModified = modified; }

protected:
    // Called by the framework when a document begins anew. 1: the document is ready.
    virtual int OnNewDocument();

private:
    int m_bModified = 0;
};

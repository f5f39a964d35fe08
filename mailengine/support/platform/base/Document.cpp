#include <mailengine/support/platform/base/Document.h>

const CRuntimeClass CObject::classCObject = {"CObject", nullptr, nullptr};
const CRuntimeClass CDocument::classCDocument = {"CDocument", nullptr, &CObject::classCObject};
const AFX_MSGMAP CCmdTarget::messageMap = {nullptr, nullptr, 0};

const CRuntimeClass* CObject::GetRuntimeClass() const {
    return &classCObject;
}

const AFX_MSGMAP* CCmdTarget::GetMessageMap() const {
    return &messageMap;
}

const CRuntimeClass* CDocument::GetRuntimeClass() const {
    return &classCDocument;
}

void CObject::Serialize(CArchive&) {}

int CDocument::OnNewDocument() {
    return 1;
}

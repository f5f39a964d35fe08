#include <mailengine/support/platform/base/Document.h>

const CRuntimeClass CDocument::classCDocument = {"CDocument", nullptr, &CObject::classCObject};

const CRuntimeClass* CDocument::GetRuntimeClass() const {
    return &classCDocument;
}

int CDocument::OnNewDocument() {
    return 1;
}

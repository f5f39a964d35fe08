#include <mailengine/support/platform/base/CmdTarget.h>

const CRuntimeClass CObject::classCObject = {"CObject", nullptr, nullptr};
const AFX_MSGMAP CCmdTarget::messageMap = {nullptr, nullptr, 0};

const CRuntimeClass* CObject::GetRuntimeClass() const {
    return &classCObject;
}

void CObject::Serialize(CArchive&) {}

const AFX_MSGMAP* CCmdTarget::GetMessageMap() const {
    return &messageMap;
}

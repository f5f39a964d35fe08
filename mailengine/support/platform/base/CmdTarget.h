// CObject and CCmdTarget: the roots of the framework's classes, with the class record and the message map.
#pragma once

#include <mailengine/support/platform/base/Export.h>

// An archive of the framework. Nothing in this library writes to one.
class CArchive;
class CObject;

// What the framework knows of a class: its name, its base and how to make an object of it.
struct CRuntimeClass {
    const char* m_lpszClassName;
    CObject* (*m_pfnCreateObject)();  // null: objects cannot be made through the record
    const CRuntimeClass* m_pBaseClass;
};

class MAILENGINE_API CObject {
public:
    // The record of the object's class.
    virtual const CRuntimeClass* GetRuntimeClass() const;
    virtual ~CObject() = default;
    // Stores or loads the object's data. Does nothing.
    virtual void Serialize(CArchive& archive);
    static const CRuntimeClass classCObject;
};

class CCmdTarget;

// One row of a message map: the handler that runs for a window message.
struct AFX_MSGMAP_ENTRY {
    unsigned int message;
    void (*handler)(CCmdTarget& target);
};

// The message map of a class: its own rows and the map of its base, null at the root.
struct AFX_MSGMAP {
    const AFX_MSGMAP* base;
    const AFX_MSGMAP_ENTRY* entries;
    int count;
};

class MAILENGINE_API CCmdTarget : public CObject {
public:
    // The message map of the object's class.
    virtual const AFX_MSGMAP* GetMessageMap() const;
    static const AFX_MSGMAP messageMap;
};

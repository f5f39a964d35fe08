// CAddress: one mailbox, by value: a display name, a mail address and a group name. One thread at a time; const
// operations may run on many. All text is code page 932.
#pragma once

#include <mailengine/support/platform/base/Export.h>
#include <mailengine/support/platform/base/Types.h>
#include <mailengine/support/platform/text/String.h>

class MAILENGINE_API CAddress {
public:
    CAddress() = default;
    // Texts up to their NUL, code page 932; a null one is empty.
    CAddress(const char* groupName, const char* displayName, const char* mailAddress);
    CAddress(const CAddress&) = default;
    CAddress& operator=(const CAddress&) = default;
    virtual ~CAddress() = default;

    // The group name is kept for the host; it never reaches a message.
    CString GetGroupName() const { return m_groupName; }
    // The person's name as shown, without surrounding quotes; empty if the address has none.
    CString GetDisplayName() const { return m_displayName; }
    // The address proper (addr-spec, RFC 5322 3.4.1), without angle brackets.
    CString GetMailAddress() const { return m_mailAddress; }
    // Setters store what they get; CheckAddress is there for those who want to know.
    void SetGroupName(const char* groupName) { m_groupName = groupName; }
    void SetDisplayName(const char* displayName) { m_displayName = displayName; }
    void SetMailAddress(const char* mailAddress) { m_mailAddress = mailAddress; }

    // An address has no icon: null, and a handle given is ignored with result 1.
    HICON GetIcon() const { return nullptr; }
    int SetIcon(HICON icon);

    // Makes all three texts empty.
    void Clear();

    // Takes text of the forms "name <address>" and "address", and loses the group name. Text without "<" becomes the
    // mail address byte for byte. A plain name loses its double quotes, a Japanese one keeps them; an escaped double
    // quote in either becomes a plain one. Without ">" the address is all behind the "<". Never fails.
    void FromText(const CString& text);
    // The form for people: name <address>, nothing quoted; the mail address alone if there is no name.
    CString ToText() const;
    // The form for a message field (RFC 5322 3.4): the name as a quoted string, the address in angle brackets; the
    // mail address alone if there is no name. A backslash in the name is not doubled.
    CString ToTextForMail() const;

    // CheckAddress of the mail address, without its message.
    int IsValid() const;
    // 1 if address could be a mail address. Else 0, and message takes a text for the user: it is empty, it holds
    // Japanese, or its first "@" is missing or at an end. On 1 message stays as it was.
    static int CheckAddress(const CString& address, CString& message);

private:
    CString m_groupName;
    CString m_displayName;
    CString m_mailAddress;
};

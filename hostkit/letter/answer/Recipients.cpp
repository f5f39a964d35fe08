#include <algorithm>
#include <hostkit/characters/MailText.h>
#include <hostkit/characters/Utf8.h>
#include <hostkit/characters/Words.h>
#include <hostkit/letter/Addresses.h>
#include <hostkit/letter/answer/Recipients.h>
#include <new>
#include <set>

namespace hostkit {

namespace {

using Addresses = std::vector<CAddress>;

// A value of a field can be two addresses, or end the path of an SMTP command (RFC 5321 4.1.2).
bool CanBeSentTo(const CString& mailAddress) {
    for (const char byte : mailAddress.View()) {
        if (byte <= ' ' || byte > '~' || std::string_view("<>,;()").find(byte) != std::string_view::npos) return false;
    }
    try {
        (void)AddressOf(std::string(mailAddress.View()), Missing::Refuse, Field::To);
        return true;
    } catch (const Failure&) {
        return false;
    }
}

// A backslash would go out undoubled, and one at the end of a plain name would swallow the quote behind it. In what a
// user goes on with, an angle bracket would begin the address.
CString CleanName(const std::string& displayName) {
    CString name = Carried(displayName, Extent::Line);
    name.Replace('\\', '/');
    name.Replace('<', '(');
    name.Replace('>', ')');
    return name;
}

// The addresses of the answered mail as an answer can have them.
class Cleaner {
public:
    Cleaner(const StoredMail& mail, std::vector<std::string>& warnings) : m_mail(mail), m_warnings(warnings) {}

    Addresses Cleaned(const CStringArray& texts) {
        Addresses cleaned;
        for (int i = 0; i < texts.GetSize(); ++i) {
            CAddress address;
            address.FromText(texts.GetAt(i));
            DropQuotes(address);
            Append({m_mail.TextOf(address.GetDisplayName().View()), m_mail.TextOf(address.GetMailAddress().View())},
                   cleaned);
        }
        return cleaned;
    }

    Addresses Cleaned(const std::vector<Mailbox>& mailboxes) {
        Addresses cleaned;
        for (const Mailbox& mailbox : mailboxes)
            Append(mailbox, cleaned);
        return cleaned;
    }

private:
    void Append(const Mailbox& mailbox, Addresses& cleaned) {
        const CString mailAddress = Carried(mailbox.address, Extent::Line);
        if (CanBeSentTo(mailAddress)) {
            cleaned.emplace_back("", CleanName(mailbox.name), mailAddress);
        } else if (!mailAddress.IsEmpty()) {
            m_warnings.push_back(Words("the address '{1}' of the answered mail is left out: it cannot be sent to",
                                       Shown(mailbox.address)));
        }
    }

    const StoredMail& m_mail;
    std::vector<std::string>& m_warnings;
};

std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& ch : lower) {
        if (ch >= 'A' && ch <= 'Z') ch = static_cast<char>(ch - 'A' + 'a');
    }
    return lower;
}

// Nobody but the user has an address that differs from theirs in its case alone.
class OwnAddresses {
public:
    explicit OwnAddresses(const std::vector<std::string>& own) {
        for (const std::string& address : own)
            m_own.insert(Lower(address));
    }

    Addresses Without(Addresses addresses) const {
        std::erase_if(addresses, [this](const CAddress& address) {
            return m_own.find(Lower(address.GetMailAddress().View())) != m_own.end();
        });
        return addresses;
    }

private:
    std::set<std::string> m_own;
};

void DropKnown(std::set<std::string>& known, Addresses& addresses) {
    std::erase_if(addresses, [&](const CAddress& address) {
        return !known.insert(ComparedAddress(FromCodePage(address.GetMailAddress().View()))).second;
    });
}

void Replace(CMailDoc& doc, Addresses to, Addresses cc) {
    std::set<std::string> known;
    DropKnown(known, to);
    DropKnown(known, cc);
    doc.ClearToAddresses();
    doc.ClearCcAddresses();
    if (!doc.AddToAddresses(to) || !doc.AddCcAddresses(cc)) throw std::bad_alloc();
}

}  // namespace

void SetRecipients(const StoredMail& mail, const HeaderValues& header, Audience audience,
                   const std::vector<std::string>& own, CMailDoc& doc, std::vector<std::string>& warnings) {
    const OwnAddresses mine(own);
    Cleaner cleaner(mail, warnings);
    const Addresses senders = cleaner.Cleaned(header.from);
    const Addresses others = mine.Without(senders);
    const Addresses recipients = mine.Without(cleaner.Cleaned(header.to));
    const Addresses copies = mine.Without(cleaner.Cleaned(header.cc));
    const Addresses instead =
        mine.Without(mail.IsPassed() ? cleaner.Cleaned(mail.Gateway().replyTo) : cleaner.Cleaned(header.replyTo));
    const bool isOwn = !senders.empty() && others.empty();
    Addresses to = isOwn ? recipients : instead.empty() ? others : instead;
    Addresses cc;
    if (audience == Audience::All) {
        if (!isOwn) cc = recipients;
        cc.insert(cc.end(), copies.begin(), copies.end());
    }
    if (isOwn && to.empty()) {
        to = copies.empty() ? senders : copies;  // a note to oneself is answered to oneself
        cc.clear();
    }
    Replace(doc, std::move(to), std::move(cc));
}

void DropRepeated(CMailDoc& doc) {
    Replace(doc, AddressesOf(doc, doc.GetToAddressSize(), &CMailDoc::GetToAddress),
            AddressesOf(doc, doc.GetCcAddressSize(), &CMailDoc::GetCcAddress));
}

}  // namespace hostkit

#include <hostkit/letter/Addresses.h>
#include <hostkit/letter/BlindCopies.h>

namespace hostkit {

BlindCopies::BlindCopies(CMailDoc& doc)
    : m_doc(doc),
      m_addresses(AddressesOf(doc, doc.GetBccAddressSize(), &CMailDoc::GetBccAddress)),
      m_nSenderBcc(doc.GetSenderBccFlg()),
      m_nModified(doc.IsModified()) {
    m_doc.ClearBccAddresses();
    m_doc.SetSenderBccFlg(0);
}

BlindCopies::~BlindCopies() {
    (void)m_doc.AddBccAddresses(m_addresses);  // fails only where memory ends, and then nobody is told of these
    m_doc.SetSenderBccFlg(m_nSenderBcc);
    m_doc.SetModifiedFlag(m_nModified);
}

CStringArray BlindCopies::Recipients() const {
    CStringArray recipients;
    for (const CAddress& address : m_addresses)
        recipients.SetAtGrow(recipients.GetSize(), address.GetMailAddress());
    if (m_nSenderBcc == 0) return recipients;
    CAddress sender;
    m_doc.GetFromAddress(sender);
    recipients.SetAtGrow(recipients.GetSize(), sender.GetMailAddress());
    return recipients;
}

}  // namespace hostkit

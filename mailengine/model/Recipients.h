// The recipients of a document, list by list, in the order that the header of a message and its envelope name them.
#pragma once

#include <mailengine/model/MailDoc.h>

struct RecipientList {
    const char* field;  // the name of its header field
    unsigned int (CMailDoc::*size)() const;
    const CAddress* (CMailDoc::*at)(unsigned int index) const;
};

inline constexpr RecipientList kToList = {"To", &CMailDoc::GetToAddressSize, &CMailDoc::GetToAddress};
inline constexpr RecipientList kCcList = {"Cc", &CMailDoc::GetCcAddressSize, &CMailDoc::GetCcAddress};
inline constexpr RecipientList kBccList = {"Bcc", &CMailDoc::GetBccAddressSize, &CMailDoc::GetBccAddress};

// Calls visit with each address of one list of doc.
template <class Visit>
void ForEachAddress(const CMailDoc& doc, const RecipientList& list, Visit visit) {
    for (unsigned int i = 0; i < (doc.*list.size)(); ++i)
        visit(*(doc.*list.at)(i));
}

// Calls visit with each recipient of doc: To, Cc, Bcc and, where the sender gets a blind copy, the sender.
template <class Visit>
void ForEachRecipient(const CMailDoc& doc, Visit visit) {
    for (const RecipientList& list : {kToList, kCcList, kBccList})
        ForEachAddress(doc, list, visit);
    if (doc.GetSenderBccFlg() == 0) return;
    CAddress sender;
    doc.GetFromAddress(sender);
    visit(sender);
}

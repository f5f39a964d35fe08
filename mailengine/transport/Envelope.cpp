#include <string_view>

#include <mailengine/model/MailDoc.h>
#include <mailengine/support/Texts.h>
#include <mailengine/transport/Envelope.h>

namespace {

void AddRecipient(const CAddress* address, CStringArray& recipients) {
    if (address != nullptr) recipients.SetAtGrow(recipients.GetSize(), address->GetMailAddress());
}

void TakeRecipients(const CMailDoc& doc, CStringArray& recipients) {
    for (unsigned int i = 0; i < doc.GetToAddressSize(); ++i)
        AddRecipient(doc.GetToAddress(i), recipients);
    for (unsigned int i = 0; i < doc.GetCcAddressSize(); ++i)
        AddRecipient(doc.GetCcAddress(i), recipients);
    for (unsigned int i = 0; i < doc.GetBccAddressSize(); ++i)
        AddRecipient(doc.GetBccAddress(i), recipients);
    CAddress from;
    doc.GetFromAddress(from);
    if (doc.GetSenderBccFlg()) AddRecipient(&from, recipients);
}

bool IsFitToSend(const CString& name) {
    return name.View().find_first_of(std::string_view("\r\n\0", 3)) == std::string_view::npos;
}

}  // namespace

int TakeEnvelope(const CMailDoc& doc, Envelope& envelope, CString& error) {
    doc.GetSendServer(envelope.server, envelope.port);
    CAddress from;
    doc.GetFromAddress(from);
    envelope.sender = from.GetMailAddress();
    const char* problem = nullptr;
    if (envelope.server.IsEmpty())
        problem = "SendServer is empty.";
    else if (envelope.port < 0)
        problem = "SendPort is invalid.";
    else if (envelope.sender.IsEmpty())
        problem = "Sender is empty.";
    else if (!IsFitToSend(envelope.server))  // a NUL would cut it to another name
        problem = texts::kServerUnusable;
    else if (!IsFitToSend(envelope.sender))
        problem = texts::kAddressUnusable;
    if (problem != nullptr) {
        error = problem;
        return 0;
    }
    TakeRecipients(doc, envelope.recipients);
    return 1;
}

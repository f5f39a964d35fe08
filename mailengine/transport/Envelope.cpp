#include <string_view>

#include <mailengine/model/Recipients.h>
#include <mailengine/support/Texts.h>
#include <mailengine/transport/Envelope.h>

namespace {

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
    ForEachRecipient(doc, [&](const CAddress& recipient) {
        envelope.recipients.SetAtGrow(envelope.recipients.GetSize(), recipient.GetMailAddress());
    });
    return 1;
}

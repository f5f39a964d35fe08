#include <algorithm>
#include <hostkit/attachments/AttachedMail.h>
#include <hostkit/characters/Words.h>
#include <hostkit/gateway/entities/Addresses.h>
#include <hostkit/gateway/entities/Fields.h>
#include <hostkit/letter/Addresses.h>
#include <hostkit/letter/FinishedMail.h>
#include <new>

namespace hostkit {

namespace {

bool IsBlind(const gateway::Field& field) {
    return gateway::EqualNames(field.name, "Bcc") || gateway::EqualNames(field.name, "Resent-Bcc");
}

// The signs of a field that separate the halves of an address: those outside of quotes and comments.
std::size_t SignsIn(std::string_view raw) {
    std::size_t signs = 0;
    int comments = 0;
    bool isQuoted = false;
    for (std::size_t i = 0; i < raw.size(); ++i) {
        if (raw[i] == '\\')
            ++i;
        else if (raw[i] == '"' && comments == 0)
            isQuoted = !isQuoted;
        else if (!isQuoted && (raw[i] == '(' || raw[i] == ')'))
            comments = std::max(comments + (raw[i] == '(' ? 1 : -1), 0);
        else if (raw[i] == '@' && !isQuoted && comments == 0)
            ++signs;
    }
    return signs;
}

// Throws Failure where an address may be left out: a recipient would be lost without a word.
std::vector<std::string> AddressesIn(const gateway::Header& header, std::string_view name, Field field) {
    std::vector<Mailbox> mailboxes;
    std::size_t signs = 0;
    for (const gateway::Field& one : header.fields) {
        if (!gateway::EqualNames(one.name, name)) continue;
        gateway::ReadAddresses(one.raw, "", mailboxes);
        signs += SignsIn(one.raw);
    }
    std::vector<std::string> addresses;
    for (const Mailbox& mailbox : mailboxes)
        if (mailbox.address.find('@') != std::string::npos) addresses.push_back(mailbox.address);
    if (signs <= addresses.size() && addresses.size() == mailboxes.size()) return addresses;
    throw Failure(FailureKind::Value, {field},
                  Words("the message's field {1} holds what is no address; name whom you mean here", name));
}

void AddRecipients(const std::vector<std::string>& addresses, Field field, CMailDoc& doc) {
    std::vector<CAddress> recipients;
    recipients.reserve(addresses.size());
    for (const std::string& address : addresses)
        recipients.push_back(AddressOf(address, Missing::Refuse, field));
    if (!doc.AddToAddresses(recipients)) throw std::bad_alloc();
}

// The message without the fields that tell of the blind copies: each from its name to the line end behind it.
std::string WithoutBlind(std::string_view message, const gateway::Header& header) {
    std::string text;
    text.reserve(message.size());
    std::size_t kept = 0;
    for (const gateway::Field& field : header.fields) {
        if (!IsBlind(field)) continue;
        const auto top = static_cast<std::size_t>(field.name.data() - message.data());
        const auto end = static_cast<std::size_t>(field.raw.data() + field.raw.size() - message.data());
        text += message.substr(kept, top - kept);
        kept = std::min(message.find('\n', end), message.size() - 1) + 1;
    }
    return text += message.substr(kept);
}

[[noreturn]] void Refuse(const std::string& name, const std::string& fact) {
    throw Failure(FailureKind::Message, {Field::None, name}, fact);
}

std::uint64_t LineOf(std::string_view message, std::size_t offset) {
    const std::string_view before = message.substr(0, offset);
    return static_cast<std::uint64_t>(std::count(before.begin(), before.end(), '\n')) + 1;
}

// Another reader may go on behind a line that is no field, and find a Bcc there that this one did not.
void CheckHeader(std::string_view message, const gateway::Header& header, std::size_t bodyTop,
                 const std::string& name) {
    if (header.fields.empty()) Refuse(name, Words("is no message: it has no header"));
    const std::string_view top = message.substr(0, bodyTop);
    if (bodyTop == message.size() || top.ends_with("\n\n") || top.ends_with("\n\r\n")) return;
    Refuse(name, Words("line {1} of its header is no field; an empty line ends a header", LineOf(message, bodyTop)));
}

}  // namespace

FinishedMail TakeFinishedMail(std::string message, const std::string& name, const std::optional<std::string>& from,
                              const std::vector<std::string>& to, CMailDoc& doc) {
    if (const std::size_t nul = message.find('\0'); nul != std::string::npos)
        Refuse(name, Words("no mail can carry {1}", WordsFor({Uncarriable::What::Nul, LineOf(message, nul), nul})));
    MessageForm form;  // of what the user can look into
    form.Take(message);
    // As on its way: a bare CR ends a line there, with a field behind it.
    if (form.HasBareEnds()) message = LineEnds().Next(message);
    std::size_t bodyTop = 0;
    const gateway::Header header = gateway::ReadHeader(message, bodyTop);
    CheckHeader(message, header, bodyTop, name);
    const std::vector<std::string> senders = from ? std::vector{*from} : AddressesIn(header, "From", Field::From);
    if (!senders.empty()) doc.SetFromAddress(AddressOf(senders[0], Missing::Refuse, Field::From));
    AddRecipients(to.empty() ? AddressesIn(header, "To", Field::To) : to, Field::To, doc);
    if (to.empty()) {
        AddRecipients(AddressesIn(header, "Cc", Field::To), Field::Cc, doc);
        AddRecipients(AddressesIn(header, "Bcc", Field::To), Field::Bcc, doc);
    }
    if (std::any_of(header.fields.begin(), header.fields.end(), IsBlind)) message = WithoutBlind(message, header);
    return {name, std::move(message), WordsFor(form.Fault())};
}

void CheckSendable(const FinishedMail& mail) {
    if (mail.unsendable.empty()) return;
    throw Failure(FailureKind::Unfit, {Field::None, mail.name}, Words("a server need not take {1}", mail.unsendable));
}

}  // namespace hostkit

#include <algorithm>
#include <hostkit/gateway/entities/Addresses.h>
#include <hostkit/gateway/entities/Fields.h>
#include <hostkit/gateway/entities/ParserOptions.h>
#include <hostkit/gateway/text/EncodedWords.h>
#include <memory>

namespace hostkit::gateway {
namespace {

// GMime calls itself for a group in a group, which no RFC knows: a field of many would overrun its stack.
constexpr int kMaxGroups = 2000;

// Makes every colon that cannot open a group, and every semicolon that cannot close one, a comma.
class GroupGuard {
public:
    static std::string Guard(std::string_view field) {
        GroupGuard guard(field);
        for (std::size_t i = 0; i < field.size(); ++i)
            guard.m_guarded += guard.Take(i);
        return std::move(guard.m_guarded);
    }

private:
    explicit GroupGuard(std::string_view field) : m_field(field), m_lastAngle(field.rfind('>')) {}

    char Take(std::size_t at) {
        const char c = m_field[at];
        if (m_escaped || c == '\\') {
            m_escaped = !m_escaped;
        } else if (c == '"') {
            m_quoted = !m_quoted;
        } else if (!m_quoted && c == '<') {
            m_angle = m_lastAngle != std::string_view::npos && at < m_lastAngle;
        } else if (!m_quoted && c == '>') {
            m_angle = false;
        } else if (c == ':') {
            return TakeColon();
        } else if (c == ';' && !m_quoted && !m_angle) {
            const bool closes = m_group;
            m_group = false;
            return closes ? c : ',';
        }
        return c;
    }

    char TakeColon() {
        if (++m_colons > kMaxGroups) return ',';
        if (m_quoted || m_angle) return ':';
        if (m_group) return ',';
        m_group = true;
        return ':';
    }

    std::string_view m_field;
    std::size_t m_lastAngle;
    std::string m_guarded;
    bool m_escaped = false;
    bool m_quoted = false;
    bool m_angle = false;
    bool m_group = false;
    int m_colons = 0;
};

using AddressList = std::unique_ptr<InternetAddressList, decltype(&g_object_unref)>;

std::string TextOf(const char* text) {
    return text == nullptr ? "" : text;
}

void Collect(InternetAddressList* list, std::vector<Mailbox>& mailboxes) {
    const int length = internet_address_list_length(list);
    for (int i = 0; i < length; ++i) {
        InternetAddress* const address = internet_address_list_get_address(list, i);
        if (INTERNET_ADDRESS_IS_MAILBOX(address)) {
            Mailbox mailbox{TextOf(internet_address_get_name(address)),
                            TextOf(internet_address_mailbox_get_addr(INTERNET_ADDRESS_MAILBOX(address)))};
            if (!mailbox.address.empty() || !mailbox.name.empty()) mailboxes.push_back(std::move(mailbox));
        } else if (INTERNET_ADDRESS_IS_GROUP(address)) {
            Collect(internet_address_group_get_members(INTERNET_ADDRESS_GROUP(address)), mailboxes);
        }
    }
}

// What of a field can be worth reading: GMime makes an object of some hundred bytes of each address. Names may hold
// commas too.
std::string_view HeadOf(std::string_view raw) {
    constexpr std::size_t kMostCommas = 4 * kMaxAddresses;
    std::size_t at = 0;
    for (std::size_t commas = 0; commas < kMostCommas && at != std::string_view::npos; ++commas)
        at = raw.find_first_of(",;", at + 1);
    return raw.substr(0, at);
}

}  // namespace

bool ReadAddresses(std::string_view raw, std::string_view letter, std::vector<Mailbox>& mailboxes) {
    const std::string_view read = HeadOf(raw);
    const std::string field = GroupGuard::Guard(DecodeWords(Unfold(read), Words::Parts, letter));
    const AddressList list(internet_address_list_parse(Options(), field.c_str()), &g_object_unref);
    if (list) Collect(list.get(), mailboxes);
    const bool areAll = read.size() == raw.size() && mailboxes.size() <= kMaxAddresses;
    if (!areAll) mailboxes.resize(std::min(mailboxes.size(), kMaxAddresses));
    return areAll;
}

}  // namespace hostkit::gateway

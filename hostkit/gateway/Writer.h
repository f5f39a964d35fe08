// Writer: writes a message in the dialect. Text is of the charset shift_jis throughout, under Base64; a multipart/mixed
// is the only multipart. One message, one object.
#pragma once

#include <hostkit/gateway/CharacterTable.h>
#include <hostkit/gateway/Mailbox.h>
#include <string>
#include <string_view>
#include <vector>

namespace hostkit::gateway {

class Writer {
public:
    explicit Writer(CharacterTable& characters) : m_characters(characters) {}

    // Fields, in the order in which they are to stand. Values are UTF-8; an empty one, or a list of none, is left out.
    void AddText(std::string_view name, std::string value);
    void AddAddresses(std::string_view name, const std::vector<Mailbox>& mailboxes);

    // Ends the header. text is UTF-8 with any line ends; behind it come as many calls of AddFile.
    void BeginBody(std::string_view text, std::size_t files);
    // name is UTF-8 and clean.
    void AddFile(const std::string& name, std::string_view data);

    std::string Take();
    std::size_t Size() const { return m_message.size(); }

private:
    void AddBase64(std::string_view data);
    void AddBase64Lines(std::string_view data);
    std::string ItemOf(const Mailbox& mailbox);

    CharacterTable& m_characters;
    std::string m_message;
    bool m_isMultipart = false;
};

}  // namespace hostkit::gateway

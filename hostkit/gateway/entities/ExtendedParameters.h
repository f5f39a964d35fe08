// ExtendedParameters: brings the extended parameters (RFC 2231) of any charset through GMime, which would convert them
// by libc's tables: those lack row 13 and more of what mail holds. Each byte goes in as the character of its number, as
// UTF-8, and comes out as that byte again; so it may be cut between two pieces. One field, one object.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace hostkit::gateway {

class ExtendedParameters {
public:
    // The field for GMime.
    std::string Prepare(std::string_view field);
    // What a value is that GMime read under that name.
    std::string Value(const std::string& name, const std::string& value) const;

private:
    std::string PreparePiece(std::string_view piece);

    std::map<std::string, std::string> m_charsets;  // by the name of the parameter, in small letters
};

}  // namespace hostkit::gateway

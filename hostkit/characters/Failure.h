// Failure: why a work of the kit was not done, as a fact and its place. What a host makes of it is the host's: an exit
// status by the kind, a label of its own (an option, a field of a window) by the place, an advice by both.
#pragma once

#include <cstddef>
#include <hostkit/characters/Export.h>
#include <stdexcept>
#include <string>
#include <string_view>

namespace hostkit {

enum class FailureKind {
    Value,      // what the host was given is wrong as it stands
    Uncarried,  // it holds a character that a Japanese mail cannot carry
    Input,      // a file cannot be read, or is none that can be
    Message,    // what was read is no mail, or too large to be one
    SameFile,   // a file would be read while it is written
    Target,     // a place to write to is none, or may not be written
    Unkept,     // a file cannot be replaced without losing its owner, group, permissions or access list
    Output,     // writing failed
    Delivery,   // a server did not take the mail
    Login,      // and asks for a login or encryption, which the engine does not have
    Unfit,      // a finished message is none that every server takes
    Settings,   // the user's settings are wrong in one line
    Later,      // the mail was not taken now; a later try may work
    NoHost,     // it has a server that no name leads to
    Rights,     // this user may not send so
    Program,    // no program of a mail system is there
    System,     // this machine lacks what the work needs
};

// What of a letter or of a work is meant.
enum class Field {
    None,
    From,
    Own,  // another address of the sender's
    ReplyTo,
    To,
    Cc,
    Bcc,
    Subject,
    Dear,
    Greeting,
    Body,
    Closing,
    Signature,
    Mailer,
    Attachment,
    Server,
    Folder,
    Limit,
};

struct Place {
    Field field = Field::None;
    std::string name{};    // the file, or the value as it was given; empty: the field has one
    std::size_t line = 0;  // both count from 1, a column in characters; 0: the whole of it, or of the line
    std::size_t column = 0;
};

class HOSTKIT_API Failure : public std::runtime_error {
public:
    // fact is UTF-8 and goes on from the place.
    Failure(FailureKind kind, const Place& place, const std::string& fact);

    FailureKind Kind() const { return m_kind; }
    const Place& Where() const { return m_place; }
    const std::string& Fact() const { return m_fact; }
    // Place and fact in one sentence of UTF-8, the place's field under the host's own label. what() is the sentence
    // with the kit's labels.
    std::string Sentence(std::string_view label) const;

private:
    FailureKind m_kind;
    Place m_place;
    std::string m_fact;
};

}  // namespace hostkit

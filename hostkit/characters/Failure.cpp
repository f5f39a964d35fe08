#include <hostkit/characters/Failure.h>
#include <hostkit/characters/Words.h>

namespace hostkit {

namespace {

const char* LabelOf(Field field) {
    switch (field) {
        case Field::None:
            return "";
        case Field::From:
            return Marked("From");
        case Field::Own:
            return Marked("own address");
        case Field::ReplyTo:
            return Marked("Reply-To");
        case Field::To:
            return Marked("To");
        case Field::Cc:
            return Marked("Cc");
        case Field::Bcc:
            return Marked("Bcc");
        case Field::Subject:
            return Marked("Subject");
        case Field::Dear:
            return Marked("salutation");
        case Field::Greeting:
            return Marked("greeting");
        case Field::Body:
            return Marked("body");
        case Field::Closing:
            return Marked("closing");
        case Field::Signature:
            return Marked("signature");
        case Field::Mailer:
            return Marked("mailer");
        case Field::Attachment:
            return Marked("attachment");
        case Field::Server:
            return Marked("server");
        case Field::Folder:
            return Marked("folder");
        case Field::Limit:
            return Marked("limit");
    }
    return "";
}

std::string SentenceOf(const Place& place, std::string_view label, const std::string& fact) {
    // A body that has a name came from a file, which is what its reader has to look into.
    std::string text(place.field == Field::Body && !place.name.empty() ? "" : label);
    if (!text.empty() && !place.name.empty()) text += ' ';
    text += place.name;
    if (!text.empty()) text += ": ";
    if (place.line != 0 && place.column != 0)
        text += Words("line {1}, column {2}: ", place.line, place.column);
    else if (place.line != 0)
        text += Words("line {1}: ", place.line);
    return text + fact;
}

}  // namespace

Failure::Failure(FailureKind kind, const Place& place, const std::string& fact)
    : std::runtime_error(SentenceOf(place, Words(LabelOf(place.field)), fact)),
      m_kind(kind),
      m_place(place),
      m_fact(fact) {}

std::string Failure::Sentence(std::string_view label) const {
    return SentenceOf(m_place, label, m_fact);
}

}  // namespace hostkit

#include <hostkit/characters/Failure.h>

namespace hostkit {

namespace {

const char* LabelOf(Field field) {
    switch (field) {
        case Field::None:
            return "";
        case Field::From:
            return "From";
        case Field::ReplyTo:
            return "Reply-To";
        case Field::To:
            return "To";
        case Field::Cc:
            return "Cc";
        case Field::Bcc:
            return "Bcc";
        case Field::Subject:
            return "Subject";
        case Field::Dear:
            return "salutation";
        case Field::Greeting:
            return "greeting";
        case Field::Body:
            return "body";
        case Field::Closing:
            return "closing";
        case Field::Signature:
            return "signature";
        case Field::Mailer:
            return "mailer";
        case Field::Attachment:
            return "attachment";
        case Field::Server:
            return "server";
        case Field::Folder:
            return "folder";
    }
    return "";
}

std::string SentenceOf(const Place& place, std::string_view label, const std::string& fact) {
    // A body that has a name came from a file, which is what its reader has to look into.
    std::string text(place.field == Field::Body && !place.name.empty() ? "" : label);
    if (!text.empty() && !place.name.empty()) text += ' ';
    text += place.name;
    if (!text.empty()) text += ": ";
    if (place.line != 0)
        text += "line " + std::to_string(place.line) + ", column " + std::to_string(place.column) + ": ";
    return text + fact;
}

}  // namespace

Failure::Failure(FailureKind kind, const Place& place, const std::string& fact)
    : std::runtime_error(SentenceOf(place, LabelOf(place.field), fact)), m_kind(kind), m_place(place), m_fact(fact) {}

std::string Failure::Sentence(std::string_view label) const {
    return SentenceOf(m_place, label, m_fact);
}

}  // namespace hostkit

// BlindCopies: the blind copies of a mail on their way out. One thread, that of the engine.
#pragma once

#include <vector>

#include <mailengine/model/MailDoc.h>
#include <mailengine/support/platform/text/StringArray.h>

namespace hostkit {

// The engine shows the Bcc field to everybody. While this object lives the document has neither that list nor the mark
// of the sender's own copy, so that what is written of it does not tell; afterwards it has both again.
class BlindCopies {
public:
    explicit BlindCopies(CMailDoc& doc);
    BlindCopies(const BlindCopies&) = delete;
    BlindCopies& operator=(const BlindCopies&) = delete;
    ~BlindCopies();

    // Their mail addresses, for the envelope.
    CStringArray Recipients() const;

private:
    CMailDoc& m_doc;
    std::vector<CAddress> m_addresses;
    int m_nSenderBcc;
    int m_nModified;
};

}  // namespace hostkit

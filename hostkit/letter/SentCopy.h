// SentCopy: the sender's own copy of a mail that goes out, in a Maildir. One thread, that of the engine.
#pragma once

#include <filesystem>
#include <functional>
#include <hostkit/characters/Export.h>
#include <hostkit/letter/Outcome.h>
#include <memory>
#include <string>

#include <mailengine/model/MailDoc.h>

namespace hostkit {

class HOSTKIT_API SentCopy {
public:
    // Looks at the Maildir, which is made where nothing is there. Throws Failure: nothing should be sent then.
    explicit SentCopy(const std::filesystem::path& maildir);
    SentCopy(const SentCopy&) = delete;
    SentCopy& operator=(const SentCopy&) = delete;
    ~SentCopy();

    // Writes the copy, with the Bcc field that the recipients do not see, where no mail program looks. To be called
    // right before the mail is sent: while this object lives, Date and Message-ID are those of the copy.
    void Write(CMailDoc& doc);
    // The same for a finished message, which comes as it goes out.
    void Write(const std::string& message);
    // What came of the sending decides: a mail that was taken stands in cur as seen (S); one whose verdict is unknown
    // is flagged too (FS); of any other nothing stays. A warning for the user where the copy was to be kept and could
    // not be, else empty.
    std::string Keep(const Outcome& sent);

private:
    void Begin(const std::function<void(int descriptor)>& write);

    struct State;
    std::unique_ptr<State> m_pState;
};

}  // namespace hostkit

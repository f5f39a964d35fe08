// CAnswerOptions: the options that say which mail is answered, for every command that can answer one. One thread.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "LetterOptions.h"
#include "Messages.h"

class CAnswerOptions {
public:
    // Adds the options to a command; this object takes their values and must outlive the parse. file is the option that
    // names the mail.
    void AddTo(CLI::App& command, CLI::Option& file);

    // Makes doc the answer to the mail in file (- is standard input), filled by what letter gives. Warns on stderr of
    // what was left out. Gives the path of the file in which the mail stands. Throws CFailure where both are standard
    // input and where it is not clear which mail is meant, and hostkit::Failure.
    std::filesystem::path Answer(const std::string& file, const CLetterOptions& letter, CMailDoc& doc) const;

    // Whether a message was named by its number.
    bool HasNumber() const { return m_nMessage.has_value(); }
    // Which message of file is meant. Throws as Answer does.
    hostkit::MessageSource::Message Message(const std::string& file) const { return TheMessage(file, m_nMessage); }

private:
    std::vector<std::string> m_strOwn;
    std::optional<std::size_t> m_nMessage;
    bool m_bAll = false;
    bool m_bStrict = false;
};

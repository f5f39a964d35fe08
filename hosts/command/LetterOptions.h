// CLetterOptions: the options that describe a mail, for every command that makes one. One thread.
#pragma once

#include <CLI/CLI.hpp>
#include <hostkit/letter/Letter.h>
#include <hostkit/settings/Settings.h>
#include <optional>

class CLetterOptions {
public:
    // Adds the options to a command; this object takes their values and must outlive the parse.
    void AddTo(CLI::App& command);

    // What standard input is where no option says so.
    enum class Input {
        Body,   // the body, where none was given: what is piped in is not dropped. A terminal is left alone
        Taken,  // something else
    };
    // What was given, with the text of the body file if one was named, and for what was not the settings. Throws
    // hostkit::Failure if one of them cannot be read.
    hostkit::Letter Letter(Input input = Input::Body) const;
    // The user's settings, read once. Throws hostkit::Failure.
    const hostkit::Settings& Settings() const;

    // What a message that is finished takes of them: another sender, and other recipients than its fields name.
    const std::optional<std::string>& From() const { return m_letter.from; }
    const std::vector<std::string>& To() const { return m_letter.to; }
    // Throws CFailure for any other option of a letter, which cannot change a finished message.
    void CheckForFinished() const;
    // The bytes of --limit, the settings, else 2 GiB, which no message may pass. Throws hostkit::Failure.
    std::uint64_t Limit() const;

    // Whether a subject was given that has no character.
    bool HasEmptySubject() const { return m_letter.subject == ""; }
    // Whether the body comes from standard input.
    bool ReadsStandardInput() const { return m_strBodyFile == "-"; }

private:
    void AddAddressesTo(CLI::App& command);
    void AddTextsTo(CLI::App& command);

    hostkit::Letter m_letter;
    std::optional<std::string> m_strBodyFile;
    std::optional<std::string> m_strConfig;
    std::optional<std::string> m_strLimit;
    mutable std::optional<hostkit::Settings> m_settings;
    bool m_bReplace = false;
    std::vector<const CLI::Option*> m_options;  // the command's, those of a letter alone
};

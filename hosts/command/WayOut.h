// CWayOut: the options that say how a mail leaves, for every command that sends one. One thread.
#pragma once

#include <CLI/CLI.hpp>
#include <hostkit/letter/SendLetter.h>
#include <hostkit/settings/Settings.h>
#include <optional>
#include <string>

class CWayOut {
public:
    // Adds the options to a command; this object takes their values and must outlive the parse.
    void AddTo(CLI::App& command);

    // The program of this machine's mail system that the mail goes to, or none where it goes to a server, which doc
    // gets: an option decides, else the settings do; where neither names a way it is /usr/sbin/sendmail. Throws
    // hostkit::Failure for a server that is none.
    std::optional<hostkit::MailProgram> ProgramFor(const hostkit::Settings& settings, CMailDoc& doc) const;

    // The Maildir that keeps a copy, if any does.
    std::optional<std::filesystem::path> CopyFor(const hostkit::Settings& settings) const;

private:
    std::optional<std::string> m_strCopy;
    std::optional<std::string> m_strServer;
    std::optional<std::string> m_strProgram;
};

#include "WayOut.h"

#include <hostkit/letter/Envelope.h>

#include "Options.h"

using options::Filled;

void CWayOut::AddTo(CLI::App& command) {
    CLI::Option* const server = Filled(command.add_option(
        "--server", m_strServer,
        "The mail server; its port is 25 unless given. Without one this machine's mail system sends the mail"));
    Filled(command.add_option("--sendmail", m_strProgram,
                              "The program of the mail system, which works as sendmail does; else /usr/sbin/sendmail"))
        ->type_name("PROGRAM")
        ->excludes(server->type_name("HOST[:PORT]"));
    Filled(command.add_option("--copy", m_strCopy,
                              "Keep a copy of what was sent in this Maildir; where it may have been sent, flagged"))
        ->type_name("MAILDIR");
}

std::optional<std::filesystem::path> CWayOut::CopyFor(const hostkit::Settings& settings) const {
    return m_strCopy ? std::filesystem::path(*m_strCopy) : settings.copy;
}

std::optional<hostkit::MailProgram> CWayOut::ProgramFor(const hostkit::Settings& settings, CMailDoc& doc) const {
    const std::optional<std::string>& server = m_strServer || m_strProgram ? m_strServer : settings.server;
    if (server) {
        hostkit::SetServer(*server, doc);
        return std::nullopt;
    }
    if (m_strProgram) return hostkit::ProgramNamed(*m_strProgram);
    return settings.program ? hostkit::MailProgram{*settings.program} : hostkit::MailProgram();
}

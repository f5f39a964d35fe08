// CReadCommand: mailengine read, messages opened for people or, as JSON, for programs.
#pragma once

#include <optional>
#include <vector>

#include "Command.h"
#include "Messages.h"

class CReadCommand : public CCommand {
public:
    explicit CReadCommand(CLI::App& program);
    int Run() const override;

private:
    void Read(CFoundMessage found) const;
    // Puts one attachment to standard output, its bytes as they are.
    void Show() const;

    std::vector<std::string> m_strFiles;
    std::optional<std::string> m_strFolder;
    std::optional<std::size_t> m_nMessage;
    std::optional<std::size_t> m_nShown;
    bool m_bStrict = false;
    bool m_bJson = false;
    bool m_bHeaders = false;
};

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

    std::vector<std::string> m_strFiles;
    std::optional<std::string> m_strFolder;
    bool m_bStrict = false;
    bool m_bJson = false;
    bool m_bHeaders = false;
};

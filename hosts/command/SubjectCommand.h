// CSubjectCommand: mailengine subject, the subjects of many messages.
#pragma once

#include <vector>

#include "Command.h"

class CSubjectCommand : public CCommand {
public:
    explicit CSubjectCommand(CLI::App& program);
    int Run() const override;

private:
    void ShowSubject(const std::string& path) const;

    std::vector<std::string> m_strFiles;
};

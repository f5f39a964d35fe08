// CSubjectCommand: mailengine subject, the subjects of many messages.
#pragma once

#include <vector>

#include "Command.h"
#include "Messages.h"

class CSubjectCommand : public CCommand {
public:
    explicit CSubjectCommand(CLI::App& program);
    int Run() const override;

private:
    void ShowSubject(CFoundMessage found) const;

    std::vector<std::string> m_strFiles;
    bool m_bStrict = false;
};

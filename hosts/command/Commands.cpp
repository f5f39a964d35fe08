#include "Commands.h"

#include "ReadCommand.h"
#include "ReplyCommand.h"
#include "SendCommand.h"
#include "SubjectCommand.h"
#include "WriteCommand.h"

std::vector<std::unique_ptr<const CCommand>> AddCommands(CLI::App& program) {
    program.name("mailengine");
    program.description("Writes, sends, reads and answers Japanese mails as Internet messages.");
    program.require_subcommand(0, 1);
    std::vector<std::unique_ptr<const CCommand>> commands;
    commands.push_back(std::make_unique<CWriteCommand>(program));
    commands.push_back(std::make_unique<CReplyCommand>(program));
    commands.push_back(std::make_unique<CReadCommand>(program));
    commands.push_back(std::make_unique<CSubjectCommand>(program));
    commands.push_back(std::make_unique<CSendCommand>(program));
    return commands;
}

#include <mailengine/support/Texts.h>
#include <mailengine/transport/Command.h>
#include <mailengine/transport/Smtp.h>

const char* FormatCommand(const char* format, std::string_view argument, CString& command) {
    if (argument.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos) return texts::kAddressUnusable;
    command.Format(format, CString(argument));
    return command.GetLength() < CSmtp::kCommandBytes ? nullptr : texts::kCommandTooLong;
}

const char* EnvelopeProblem(std::string_view sender, const CStringArray& recipients) {
    CString command;
    const char* problem = FormatCommand(kMailCommand, sender, command);
    for (int i = 0; i < recipients.GetSize() && problem == nullptr; ++i)
        problem = FormatCommand(kRcptCommand, recipients.GetAt(i).View(), command);
    return problem;
}

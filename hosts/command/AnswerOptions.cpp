#include "AnswerOptions.h"

#include <hostkit/characters/Words.h>
#include <hostkit/letter/Answer.h>

#include "Faults.h"
#include "Messages.h"
#include "Options.h"
#include "Terminal.h"

void CAnswerOptions::AddTo(CLI::App& command, CLI::Option& file) {
    command.add_option("--message", m_nMessage, "Which message of an mbox, a Maildir or a folder, counted from 1")
        ->type_name("N")
        ->check(options::FaultOfCount, "")
        ->needs(&file);
    options::AddStrict(command, m_bStrict);
}

std::filesystem::path CAnswerOptions::Answer(const std::string& file, const CLetterOptions& letter,
                                             CMailDoc& doc) const {
    if (file == "-" && letter.ReadsStandardInput())
        throw CFailure(hostkit::Words("FILE and --body-file are both standard input; name one of them as a file"),
                       kExitUsage);
    if (letter.HasEmptySubject())
        throw CFailure(
            hostkit::Words("--subject: is empty, and would take that of the answered mail away; leave it out"),
            kExitUsage);
    hostkit::MessageSource::Message message = TheMessage(file, m_nMessage);
    const auto input = file == "-" ? CLetterOptions::Input::Taken : CLetterOptions::Input::Body;
    for (const std::string& warning : hostkit::PrepareAnswer(std::move(message.bytes), letter.Letter(input), doc,
                                                             {.name = message.name, .strict = m_bStrict}))
        terminal::Warn(warning);
    return message.file;
}

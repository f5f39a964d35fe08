#include "AnswerOptions.h"

#include <hostkit/characters/Words.h>
#include <hostkit/letter/Addresses.h>
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
    command.add_flag("--all", m_bAll, "Answer the other recipients of the mail too")->needs(&file);
    options::Filled(
        options::AddMany(command, "--own", m_strOwn,
                         "An address of yours beside --from and the settings, which gets no answer; repeat for more"))
        ->type_name("ADDRESS")
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
    hostkit::AnswerOptions options{.own = letter.Settings().own, .name = message.name, .strict = m_bStrict};
    if (m_bAll) options.audience = hostkit::Audience::All;
    for (const std::string& own : m_strOwn)
        options.own.push_back(hostkit::MailAddressIn(own, hostkit::Field::Own));
    for (const std::string& warning :
         hostkit::PrepareAnswer(std::move(message.bytes), letter.Letter(input), doc, options))
        terminal::Warn(warning);
    return message.file;
}

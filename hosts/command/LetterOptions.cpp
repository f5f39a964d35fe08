#include "LetterOptions.h"

#include <algorithm>
#include <hostkit/characters/Words.h>
#include <hostkit/letter/Envelope.h>
#include <hostkit/settings/ByteCount.h>

#include "CommandLine.h"
#include "Faults.h"
#include "Options.h"
#include "StandardFiles.h"

using options::AddMany;
using options::Filled;

void CLetterOptions::AddTo(CLI::App& command) {
    const std::size_t others = command.get_options().size();
    AddAddressesTo(command);
    AddTextsTo(command);
    Filled(AddMany(command, "-a,--attach", m_letter.attachments,
                   "A file to attach; repeat for more. A .eml goes in as a mail"))
        ->type_name("FILE");
    Filled(command.add_option("--mailer", m_letter.mailer, "The name of the mail program, plain ASCII"))
        ->type_name("NAME");
    command.add_flag("--sender-bcc", m_letter.senderBcc, "A blind copy goes to the sender too");
    command.add_flag("--upper-reply", m_letter.upperReply, "Closing and signature stand above the quoted mail");
    Filled(command.add_option("--config", m_strConfig,
                              "The settings; else $XDG_CONFIG_HOME/mailengine/config.ini, if it is there"))
        ->type_name("FILE");
    Filled(command.add_option("--limit", m_strLimit, "The largest message, as 500K, 25M or 2G; else 2G"))
        ->type_name("SIZE");
    command.add_flag("--replace", m_bReplace, "Put 〓 for a character that a Japanese mail cannot carry");
    const std::vector<CLI::Option*> all = command.get_options();
    m_options.assign(all.begin() + static_cast<std::ptrdiff_t>(others), all.end());
}

void CLetterOptions::CheckForFinished() const {
    constexpr std::string_view kUsed[] = {"--from", "--to", "--config", "--limit"};
    for (const CLI::Option* option : m_options) {
        const std::string name = option->get_name();
        if (option->count() > 0 && std::find(std::begin(kUsed), std::end(kUsed), name) == std::end(kUsed))
            throw CFailure(
                hostkit::Words(
                    "{1}: a finished message is sent as it stands; --from and --to alone can be given with it", name),
                kExitUsage);
    }
}

void CLetterOptions::AddAddressesTo(CLI::App& command) {
    constexpr char kAddress[] = "ADDRESS";
    Filled(command.add_option("--from", m_letter.from, "The sender: 'Name <user@host>' or user@host"))
        ->type_name(kAddress);
    Filled(command.add_option("--reply-to", m_letter.replyTo, "Where replies go"))->type_name(kAddress);
    AddMany(command, "-t,--to", m_letter.to, "A recipient; repeat for more")->type_name(kAddress);
    AddMany(command, "-c,--cc", m_letter.cc, "A recipient of a copy; repeat for more")->type_name(kAddress);
    AddMany(
        command, "-b,--bcc", m_letter.bcc,
        "A recipient of a blind copy; repeat for more. send shows these to nobody; write keeps them in the Bcc field")
        ->type_name(kAddress);
}

void CLetterOptions::AddTextsTo(CLI::App& command) {
    command.add_option("-s,--subject", m_letter.subject, "The subject, one line")->type_name("TEXT");
    command.add_option("--dear", m_letter.dear, "The salutation")->type_name("TEXT");
    command.add_option("--greeting", m_letter.greeting, "The opening greeting")->type_name("TEXT");
    CLI::Option* body = command.add_option("--body", m_letter.body, "The body")->type_name("TEXT");
    Filled(command.add_option("--body-file", m_strBodyFile,
                              "A file that holds the body; -, or none where text is piped in, is standard input"))
        ->type_name("FILE")
        ->excludes(body);
    command.add_option("--closing", m_letter.closing, "The closing words")->type_name("TEXT");
    command.add_option("--signature", m_letter.signature, "The signature")->type_name("TEXT");
}

std::uint64_t CLetterOptions::Limit() const {
    return m_strLimit ? hostkit::BytesIn(*m_strLimit, hostkit::Field::Limit)
                      : Settings().limit.value_or(hostkit::kDefaultLimit);
}

const hostkit::Settings& CLetterOptions::Settings() const {
    if (!m_settings) m_settings = m_strConfig ? hostkit::ReadSettings(*m_strConfig) : hostkit::ReadSettings();
    return *m_settings;
}

hostkit::Letter CLetterOptions::Letter(Input input) const {
    hostkit::Letter letter = m_letter;
    if (!letter.from) letter.from = Settings().from;
    if (!letter.replyTo) letter.replyTo = Settings().replyTo;
    if (!letter.signature) letter.signature = Settings().signature;
    if (m_bReplace) letter.missing = hostkit::Missing::Replace;
    const bool isPiped = input == Input::Body && !letter.body && !m_strBodyFile && HasPipedInput();
    const std::string file = isPiped ? "-" : m_strBodyFile.value_or("");
    if (file.empty()) return letter;
    letter.body = TextAt(file);
    letter.bodyFile = NameOfInput(file);
    return letter;
}

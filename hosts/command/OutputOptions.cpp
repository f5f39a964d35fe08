#include "OutputOptions.h"

#include <hostkit/characters/Words.h>
#include <hostkit/letter/SaveLetter.h>

#include "CommandLine.h"
#include "Faults.h"
#include "Options.h"
#include "TerminalProgress.h"

void COutputOptions::AddTo(CLI::App& command) {
    options::Filled(command.add_option("-o,--output", m_strOutput, "The message file; - is standard output"))
        ->type_name("FILE")
        ->required();
    command.add_flag("--in-place", m_bInPlace,
                     "Write into a file whose owner or rights a new one could not have, or that is mounted");
}

std::unique_ptr<hostkit::OutputTarget> COutputOptions::Target() const {
    return TargetAt(m_strOutput, m_bInPlace ? hostkit::Unkept::WriteInPlace : hostkit::Unkept::Refuse);
}

void COutputOptions::Save(CMailDoc& doc, hostkit::OutputTarget& target) const {
    using Shown = CTerminalProgress::Shown;
    hostkit::Outcome outcome;
    {
        CTerminalProgress progress(hostkit::Words("Saving"), Shown::WhenSlow);
        outcome = hostkit::SaveLetter(doc, target, [&](int percent) { return progress.Show(percent); });
    }
    CheckDone(outcome);
}

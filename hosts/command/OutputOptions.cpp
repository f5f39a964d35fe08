#include "OutputOptions.h"

#include "CommandLine.h"

void COutputOptions::AddTo(CLI::App& command) {
    command.add_option("-o,--output", m_strOutput, "The message file; - is standard output")
        ->type_name("FILE")
        ->required();
    command.add_flag("--in-place", m_bInPlace,
                     "Write into a file whose owner or rights a new one in its place could not have");
}

std::unique_ptr<hostkit::OutputTarget> COutputOptions::Target() const {
    return TargetAt(m_strOutput, m_bInPlace ? hostkit::Unkept::WriteInPlace : hostkit::Unkept::Refuse);
}

// COutputOptions: the options that say where a message goes, for every command that writes one. One thread.
#pragma once

#include <CLI/CLI.hpp>
#include <hostkit/files/OutputTarget.h>
#include <memory>
#include <string>

#include <mailengine/model/MailDoc.h>

class COutputOptions {
public:
    // Adds the options to a command; this object takes their values and must outlive the parse.
    void AddTo(CLI::App& command);
    // The place that was named. Throws hostkit::Failure.
    std::unique_ptr<hostkit::OutputTarget> Target() const;
    // Writes the message there, and shows in a terminal how far it is if that takes long. Warns of what others may
    // refuse in it. Throws hostkit::Failure.
    void Save(CMailDoc& doc, hostkit::OutputTarget& target) const;

private:
    std::string m_strOutput;
    bool m_bInPlace = false;
};

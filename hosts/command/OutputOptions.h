// COutputOptions: the options that say where a message goes, for every command that writes one. One thread.
#pragma once

#include <CLI/CLI.hpp>
#include <hostkit/files/OutputTarget.h>
#include <memory>
#include <string>

class COutputOptions {
public:
    // Adds the options to a command; this object takes their values and must outlive the parse.
    void AddTo(CLI::App& command);
    // The place that was named. Throws hostkit::Failure.
    std::unique_ptr<hostkit::OutputTarget> Target() const;

private:
    std::string m_strOutput;
    bool m_bInPlace = false;
};

// CommandLine: files as a command line names them, where "-" is standard input or output. One thread.
#pragma once

#include <hostkit/files/OutputTarget.h>
#include <memory>
#include <string>

#include <mailengine/support/platform/text/String.h>

// "standard input" for "-", else the path: how an input is named to the user.
std::string NameOfInput(const std::string& path);

// The text of a file, without the mark that editors of other systems put in front of UTF-8. Throws hostkit::Failure.
std::string TextAt(const std::string& path);

// The place to write to. Throws hostkit::Failure.
std::unique_ptr<hostkit::OutputTarget> TargetAt(const std::string& path,
                                                hostkit::Unkept unkept = hostkit::Unkept::Refuse);

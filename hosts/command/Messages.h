// Messages: the messages that a command line names, one after the other: files, mboxes, Maildirs and folders. One
// thread.
#pragma once

#include <functional>
#include <hostkit/files/MessageSource.h>
#include <optional>
#include <string>
#include <vector>

struct CFoundMessage {
    hostkit::MessageSource::Message message;  // its file is "-" for standard input
    bool isOneOfMany;                         // in a folder, a Maildir or an mbox
};

// The files that were named, or "-" where none was.
std::vector<std::string> OrStandardInput(const std::vector<std::string>& files);

// Calls take with each message of each file ("-" is standard input). What it throws for one, memory that ends there
// too, is told with the message's name and ends that one alone; what was put out for one gets out before the next is
// read. Gives the exit status: 0, or that of the last fault. Throws CFailure if what was put out did not get there.
int ForEachMessage(const std::vector<std::string>& files, const std::function<void(CFoundMessage)>& take);

// The one message in file, or, of many, the one with the number. Throws CFailure if that does not say which, and
// hostkit::Failure.
hostkit::MessageSource::Message TheMessage(const std::string& file, std::optional<std::size_t> number);

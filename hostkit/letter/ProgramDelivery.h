// ProgramDelivery: a message file through this machine's mail system, with what came of it in words. One thread.
#pragma once

#include <cstdint>
#include <filesystem>
#include <hostkit/files/WorkFolder.h>
#include <hostkit/letter/Outcome.h>
#include <hostkit/letter/ProgressOperation.h>
#include <hostkit/outbox/MailProgram.h>
#include <string>
#include <vector>

#include <mailengine/writer/OutputStream.h>

namespace hostkit {

// A message in a private file with the line ends of this system. It goes with the object.
class LocalMessage {
public:
    // write gives the message to the stream, false for a failure of its own. Throws Failure where the file cannot be
    // made or holds not all of it.
    explicit LocalMessage(const std::function<bool(COutputStream&)>& write);

    // Whether write gave all of it.
    bool IsWhole() const { return m_bWhole; }
    const std::filesystem::path& Path() const { return m_file; }
    std::uint64_t Bytes() const { return std::filesystem::file_size(m_file); }

private:
    WorkFolder m_folder;
    std::filesystem::path m_file;
    bool m_bWhole = false;
};

// Gives the message to the program. share is what the operation counts for it, behind all that it counted already.
Outcome DeliverByProgram(const MailProgram& program, const std::string& sender,
                         const std::vector<std::string>& recipients, const LocalMessage& message,
                         ProgressOperation& operation, unsigned int share);

}  // namespace hostkit

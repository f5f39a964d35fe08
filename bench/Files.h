// Files: a folder in memory for the files of a benchmark, and what is asked of them.
#pragma once

#include <functional>
#include <string>

namespace bench {

// A new folder on a memory file system (tmpfs), so that no disk is measured; gone with all that is in it when the
// program ends.
const std::string& Folder();
// A folder of that name in it.
std::string Folder(const std::string& name);

std::string ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::string& bytes);
// From one file to a new one, in pieces of 64 KiB: what the system can do.
void CopyFile(const std::string& from, const std::string& to);

// The seconds of processor time that run takes, which makes the file at path; taking the file away does not count. A
// file in memory never waits, so this is the whole cost, on a busy machine too.
double TimeToMake(const std::string& path, const std::function<void()>& run);

}  // namespace bench

// InputFile: a whole file, or standard input, in memory.
#pragma once

#include <string>

// All bytes of the file at path; "-" is standard input. Throws CFailure, which names the path, if it cannot be read or
// holds more than maxBytes: an endless input ends there.
std::string ReadWhole(const std::string& path, std::size_t maxBytes);

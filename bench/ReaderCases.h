// ReaderCases: mails of the shapes that cost a reader most.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace bench {

struct ReaderCase {
    const char* name;
    int size;  // of what make repeats
    std::function<std::string(int)> make;
    bool extracts = false;  // read with its attachments as files; else as for a reply
    int result = 1;         // of CEMailPerser::Perse
};

const std::vector<ReaderCase>& ReaderCases();

}  // namespace bench

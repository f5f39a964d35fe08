#include "Terminal.h"

#include <hostkit/characters/Utf8.h>
#include <iostream>

#include "Faults.h"

void terminal::Complain(const std::string& text) {
    std::cout.flush();
    std::cerr << "mailengine: " << hostkit::Shown(text) << '\n';
}

void terminal::Warn(const std::string& text) {
    Complain("warning: " + text);
}

void terminal::Put(const std::string& text) {
    std::cout << text;
}

void terminal::Finish() {
    std::cout.flush();
    if (!std::cout) throw CFailure("standard output: cannot be written");
}

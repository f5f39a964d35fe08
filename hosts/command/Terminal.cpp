#include "Terminal.h"

#include <iostream>

#include "Failure.h"
#include "Utf8.h"

void terminal::Complain(const std::string& text) {
    std::cout.flush();
    std::cerr << "mailengine: " << utf8::Shown(text) << '\n';
}

void terminal::Put(const std::string& text) {
    std::cout << text;
}

void terminal::Finish() {
    std::cout.flush();
    if (!std::cout) throw CFailure("standard output: cannot be written");
}

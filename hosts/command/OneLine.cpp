#include "OneLine.h"

#include "Border.h"

std::string OneLine(const CString& inside) {
    std::string line;
    for (const char ch : border::ToOutside(inside.View())) {
        if (ch != '\r' && ch != '\n') {
            line += ch;
        } else if (!line.empty() && line.back() != ' ') {
            line += ' ';
        }
    }
    while (!line.empty() && line.back() == ' ')
        line.pop_back();
    return line;
}

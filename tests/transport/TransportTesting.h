// What the tests of the transport share beside the peer.
#pragma once

#include <initializer_list>
#include <string>

#include <mailengine/support/Texts.h>
#include <mailengine/support/platform/Socket.h>
#include <mailengine/support/platform/StringArray.h>

inline std::string Bytes(const CString& text) {
    return std::string(text.View());
}

// The text of a failed socket operation.
inline std::string SocketText(const char* action, int number) {
    CString text;
    text.Format(texts::kSocketError, action, number);
    return Bytes(text);
}

inline CStringArray Array(std::initializer_list<std::string> items) {
    CStringArray array;
    for (const std::string& item : items)
        array.SetAtGrow(array.GetSize(), CString(std::string_view(item)));
    return array;
}

// Ends the waits of one step at its limit in milliseconds, or at a question; the peer may be slow in all others.
class ShortWait : public CSocketWait {
public:
    ShortWait(int limitOfStep, int questions, int chosenStep = 0)
        : limit(limitOfStep), left(questions), chosen(chosenStep) {}
    int TimeLimit(int step) override { return step == chosen ? limit : -1; }
    int GoOn() override { return --left != 0; }
    int limit, left, chosen;
};

// The text as the wire wants it, made byte by byte.
inline std::string MadeTransparent(const std::string& text) {
    std::string wire;
    bool top = true;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (top && text[at] == '.') wire += '.';
        top = text[at] == '\r' || text[at] == '\n';
        if (!top)
            wire += text[at];
        else if (text[at] == '\r' || at == 0 || text[at - 1] != '\r')
            wire += "\r\n";
    }
    return wire;
}

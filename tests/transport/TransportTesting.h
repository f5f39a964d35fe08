// What the tests of the transport share beside the peer.
#pragma once

#include <initializer_list>
#include <regex>
#include <string>

#include <mailengine/support/Texts.h>
#include <mailengine/support/platform/net/Socket.h>
#include <mailengine/support/platform/text/StringArray.h>

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

// The text as the wire wants it: line ends are CRLF, and a dot on top of a line stands twice.
inline std::string MadeTransparent(const std::string& text) {
    static const std::regex lineEnd("\r\n|\r|\n"), dotOnTop("\n[.]");
    const std::string lines = "\n" + std::regex_replace(text, lineEnd, "\r\n");
    return std::regex_replace(lines, dotOnTop, "\n..").substr(1);
}

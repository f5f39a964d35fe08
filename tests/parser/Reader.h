// Reader: the parser with its protected operations open, and what the tests read with it.
#pragma once

#include <gtest/gtest.h>
#include <string>
#include <tests/GoldenFile.h>
#include <utility>
#include <vector>

#include <mailengine/parser/EMailPerser.h>

struct Reader : CEMailPerser {
    using CEMailPerser::Decode;
    using CEMailPerser::DecodeFieldValue;
    using CEMailPerser::FindEmptyLine;
    using CEMailPerser::FindField;
    using CEMailPerser::FindNextBoundary;
    using CEMailPerser::FindTopOfLine;
    using CEMailPerser::GetAttrValue;
    using CEMailPerser::GetAttrValue_MultiLine;
    using CEMailPerser::GetContentType;
    using CEMailPerser::PerseAddressField;
    using CEMailPerser::PerseMime;
};

// A text given with LF line ends, with CRLF ones.
inline CString Mail(std::string_view text) {
    std::string mail;
    for (const char c : text)
        mail += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return CString(std::move(mail));
}

inline std::string Text(const CString& text) {
    return std::string(text.View());
}

inline std::string Repeated(std::string_view text, int times) {
    std::string all;
    while (times-- > 0)
        all += text;
    return all;
}

// Rows of what goes in and what comes out, as run writes it.
using Rows = std::vector<std::pair<std::string, std::string>>;
template <class Run>
void Check(const Rows& rows, Run run) {
    for (const auto& [in, out] : rows)
        EXPECT_EQ(Shown(run(in)), Shown(out)) << Shown(in.substr(0, 300));
}

inline std::string Joined(const std::vector<int>& numbers) {
    std::string text;
    for (const int number : numbers)
        text += (text.empty() ? "" : " ") + std::to_string(number);
    return text;
}

// Takes the mark ^ out of a text: where a search starts.
inline int TakeMark(std::string& text) {
    const std::size_t mark = text.find('^');
    if (mark == std::string::npos) return 0;
    text.erase(mark, 1);
    return static_cast<int>(mark);
}

// Everything that a document holds once a message was read.
struct Read {
    Read(const CString& text, const char* folder, int reply) : result(Reader().Perse(text, folder, document, reply)) {
        document.GetSubject(subject);
        document.GetBody(body);
        document.GetOriginalSummary(summary);
        document.GetFiles(files);
    }
    std::string Lists() const {
        std::string lists;
        for (unsigned int i = 0; i < document.GetToAddressSize(); ++i)
            lists += "[" + Text(document.GetToAddress(i)->ToText()) + "]";
        for (unsigned int i = 0; i < document.GetCcAddressSize(); ++i)
            lists += "(" + Text(document.GetCcAddress(i)->ToText()) + ")";
        return lists;
    }

    CMailDoc document;
    int result;
    CString subject, body, summary;
    std::vector<CMailDoc::FileInfo> files;
};

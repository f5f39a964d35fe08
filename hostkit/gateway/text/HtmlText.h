// HtmlText: lays out as lines what an HTML parser tells: runs of text, and where elements begin and end. One page, one
// object.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace hostkit::gateway {

class HtmlText {
public:
    // name is in small letters; the attributes are those that matter here, empty where there is none.
    struct Attributes {
        std::string_view href;
        std::string_view alt;
        std::string_view style;
    };
    void Begin(std::string_view name, const Attributes& attributes);
    void End(std::string_view name);
    void Text(std::string_view text);
    std::string Take();

private:
    struct Link {
        std::string url;
        std::size_t from;  // where its text begins
    };
    struct List {
        bool isOrdered;
        int number;
    };

    void BeginItem();
    void EndLink();
    void Break(int lines);
    void Put(std::string_view word);
    void PutPreformatted(std::string_view text);
    void BeginLine();

    std::string m_text;
    int m_breaks = 0;  // line ends that are due before the next word
    bool m_isBlankDue = false;
    bool m_isCellDue = false;
    bool m_isLineOpen = false;  // a word stands on the line
    int m_skipped = 0;          // open elements inside one whose text is not shown
    int m_preformatted = 0;
    int m_quotes = 0;
    int m_breakQuotes = 0;  // of them, those that the due empty lines belong to
    std::string m_mark;     // of a list's item, due before the next word
    std::vector<List> m_lists;
    std::vector<Link> m_links;
};

}  // namespace hostkit::gateway

// MailList: the messages of a Maildir, a folder or an mbox as rows, sorted and filtered. Their headers are read while
// the program is idle; the rows are there at once.
#pragma once

#include <functional>
#include <hostkit/letter/MessageList.h>
#include <memory>
#include <wx/listctrl.h>

class MailList : public wxListView {
public:
    explicit MailList(wxWindow* parent);

    // Shows what is at path in place of what was shown. Throws hostkit::Failure; all stays as it was then.
    void Open(const std::filesystem::path& path);
    // Shows those rows alone whose sender or subject holds the text, in any case.
    void Filter(const wxString& text);
    // The entry of the row that is chosen; null if none is.
    const hostkit::MessageList::Entry* Chosen() const;
    // Its message. Throws hostkit::Failure.
    std::string ChosenMessage() const;

    std::function<void()> whenRead;  // something was read, or all: Percent and the count of rows may be others
    int Percent() const { return m_messages == nullptr ? 100 : m_messages->Percent(); }
    std::size_t Count() const { return m_messages == nullptr ? 0 : m_messages->Entries().size(); }

private:
    enum Column { kMark, kSender, kSubject, kDate };

    wxString OnGetItemText(long row, long column) const override;
    void OnIdle(wxIdleEvent& event);
    void OnColumn(wxListEvent& event);
    void Arrange();
    bool Matches(const hostkit::MessageList::Entry& entry) const;
    bool IsBefore(std::size_t left, std::size_t right) const;
    void Choose(std::size_t index);

    std::unique_ptr<hostkit::MessageList> m_messages;
    std::vector<std::size_t> m_rows;  // indices of entries
    wxString m_filter;
    int m_nColumn = kDate;
    bool m_bDescending = true;
    bool m_bReading = false;
    std::size_t m_nArranged = 0;  // entries that were there when the rows were arranged
};

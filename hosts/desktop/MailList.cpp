#include "MailList.h"

#include <algorithm>
#include <chrono>
#include <hostkit/characters/MailText.h>
#include <numeric>
#include <wx/app.h>
#include <wx/datetime.h>

#include "Text.h"

namespace {

using Entry = hostkit::MessageList::Entry;
using Clock = std::chrono::steady_clock;
using hostkit::Words;

// A step of reading is short, so that a key or a click is answered at once.
constexpr std::chrono::milliseconds kStep{15};

std::string SenderOf(const Entry& entry) {
    return entry.glance.from.name.empty() ? entry.glance.from.address : entry.glance.from.name;
}

wxString DateOf(const Entry& entry) {
    if (!entry.glance.time) return Shown(hostkit::LineShown(entry.glance.date));
    return wxDateTime(static_cast<time_t>(*entry.glance.time)).Format("%Y-%m-%d %H:%M");
}

}  // namespace

MailList::MailList(wxWindow* parent)
    : wxListView(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxLC_REPORT | wxLC_VIRTUAL | wxLC_SINGLE_SEL) {
    AppendColumn(wxEmptyString, wxLIST_FORMAT_CENTRE, FromDIP(28));
    AppendColumn(Shown(Words("Sender")), wxLIST_FORMAT_LEFT, FromDIP(190));
    AppendColumn(Shown(Words("Subject")), wxLIST_FORMAT_LEFT, FromDIP(420));
    AppendColumn(Shown(Words("Date")), wxLIST_FORMAT_LEFT, FromDIP(140));
    Bind(wxEVT_IDLE, &MailList::OnIdle, this);
    Bind(wxEVT_LIST_COL_CLICK, &MailList::OnColumn, this);
}

void MailList::Open(const std::filesystem::path& path) {
    m_messages = std::make_unique<hostkit::MessageList>(path);
    m_bReading = true;
    if (const long chosen = GetFirstSelected(); chosen >= 0) Select(chosen, false);
    Arrange();
    wxWakeUpIdle();
}

void MailList::Filter(const wxString& text) {
    m_filter = text.Lower();
    Arrange();
}

const Entry* MailList::Chosen() const {
    const long row = GetFirstSelected();
    return row < 0 || row >= std::ssize(m_rows) ? nullptr
                                                : &m_messages->Entries()[m_rows[static_cast<std::size_t>(row)]];
}

std::string MailList::ChosenMessage() const {
    return m_messages->Message(static_cast<std::size_t>(Chosen() - m_messages->Entries().data()));
}

wxString MailList::OnGetItemText(long row, long column) const {
    const Entry& entry = m_messages->Entries()[m_rows[static_cast<std::size_t>(row)]];
    switch (column) {
        case kMark:
            return entry.glance.hasAttachments ? wxString(L"\u25CF") : wxString();
        case kSender:
            return entry.isRead ? Shown(hostkit::LineShown(SenderOf(entry))) : Shown(entry.file.filename().native());
        case kSubject:
            return Shown(entry.fault.empty() ? hostkit::LineShown(entry.glance.subject) : entry.fault);
        default:
            return entry.isRead ? DateOf(entry) : wxString();
    }
}

void MailList::OnIdle(wxIdleEvent& event) {
    event.Skip();
    if (!m_bReading) return;
    const Clock::time_point end = Clock::now() + kStep;
    while (m_bReading && Clock::now() < end)
        m_bReading = m_messages->ReadNext();
    // Sorting at each step would cost more than the reading.
    if (!m_bReading || Count() != m_nArranged)
        Arrange();
    else
        Refresh();
    if (m_bReading) event.RequestMore();
    if (whenRead) whenRead();
}

void MailList::OnColumn(wxListEvent& event) {
    const int column = event.GetColumn();
    m_bDescending = column == m_nColumn ? !m_bDescending : column == kDate;
    m_nColumn = column;
    Arrange();
}

void MailList::Arrange() {
    if (m_messages == nullptr) return;
    const Entry* const chosen = Chosen();
    const std::size_t index =
        chosen == nullptr ? Count() : static_cast<std::size_t>(chosen - m_messages->Entries().data());
    m_nArranged = Count();
    m_rows.resize(Count());
    std::iota(m_rows.begin(), m_rows.end(), std::size_t{0});
    std::erase_if(m_rows, [this](std::size_t row) { return !Matches(m_messages->Entries()[row]); });
    if (!m_bReading)
        std::stable_sort(m_rows.begin(), m_rows.end(), [this](std::size_t left, std::size_t right) {
            return m_bDescending ? IsBefore(right, left) : IsBefore(left, right);
        });
    SetItemCount(std::ssize(m_rows));
    Choose(index);
    Refresh();
}

bool MailList::Matches(const Entry& entry) const {
    if (m_filter.empty() || !entry.isRead) return true;
    return Shown(entry.glance.from.name + ' ' + entry.glance.from.address + ' ' + entry.glance.subject)
        .Lower()
        .Contains(m_filter);
}

bool MailList::IsBefore(std::size_t left, std::size_t right) const {
    const Entry& a = m_messages->Entries()[left];
    const Entry& b = m_messages->Entries()[right];
    switch (m_nColumn) {
        case kMark:
            return a.glance.hasAttachments < b.glance.hasAttachments;
        case kSender:
            return SenderOf(a) < SenderOf(b);
        case kSubject:
            return a.glance.subject < b.glance.subject;
        default:
            return a.glance.time.value_or(0) < b.glance.time.value_or(0);
    }
}

// The same message stays chosen, wherever its row went.
void MailList::Choose(std::size_t index) {
    if (const long before = GetFirstSelected(); before >= 0) Select(before, false);
    const auto found = std::find(m_rows.begin(), m_rows.end(), index);
    if (found != m_rows.end()) Select(found - m_rows.begin());
}

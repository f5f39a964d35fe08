#include <algorithm>
#include <desktop/Accessible.h>
#include <desktop/ProgressBar.h>
#include <wx/dcbuffer.h>
#include <wx/renderer.h>

namespace desktop {

ProgressBar::ProgressBar(wxWindow* parent, const wxPoint& place, const wxSize& size) {
    SetBackgroundStyle(wxBG_STYLE_PAINT);
    Create(parent, wxID_ANY, place, size, wxBORDER_NONE | wxFULL_REPAINT_ON_RESIZE);
    Bind(wxEVT_PAINT, &ProgressBar::OnPaint, this);
    SetProgressBarRole(*this);
    SetAccessibleName(*this, "0 %");
}

void ProgressBar::SetRange(int lowest, int highest) {
    m_nLowest = lowest;
    m_nHighest = std::max(highest, lowest + 1);
}

void ProgressBar::SetPosition(int position) {
    const int done = std::clamp(position, m_nLowest, m_nHighest) - m_nLowest;
    const int percent = done * 100 / (m_nHighest - m_nLowest);
    if (percent == m_nPercent) return;
    m_nPercent = percent;
    SetAccessibleName(*this, std::to_string(percent) + " %");
    Refresh();
    Update();
}

void ProgressBar::OnPaint(wxPaintEvent&) {
    wxAutoBufferedPaintDC canvas(this);
    wxRendererNative::Get().DrawGauge(this, canvas, GetClientRect(), m_nPercent, 100);
}

}  // namespace desktop

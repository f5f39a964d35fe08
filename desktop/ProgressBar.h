// ProgressBar: a bar that is on the screen when SetPosition comes back. The toolkit's own paints with the next frame,
// which a busy program may never come to: 100 % would not be seen before the dialog goes.
#pragma once

#include <wx/window.h>

namespace desktop {

class ProgressBar : public wxWindow {
public:
    ProgressBar(wxWindow* parent, const wxPoint& place, const wxSize& size);

    // The lowest and highest position; 0 to 100 at first.
    void SetRange(int lowest, int highest);
    // Outside the range it is the nearer end. Costs nothing where no other part of a hundred is shown.
    void SetPosition(int position);
    int Percent() const { return m_nPercent; }

private:
    void OnPaint(wxPaintEvent& event);

    int m_nLowest = 0;
    int m_nHighest = 100;
    int m_nPercent = 0;
};

}  // namespace desktop

// mailengine-desktop: a program with windows that reads, writes and sends mail.
//
//     mailengine-desktop [FOLDER | MESSAGE | DRAFT | mailto:URL]...
#include <clocale>
#include <desktop/ToolkitWindows.h>
#include <wx/app.h>

#include "MainWindow.h"
#include "Text.h"

namespace {

hostkit::Settings SettingsOrNone() {
    try {
        return hostkit::ReadSettings();
    } catch (const hostkit::Failure& failure) {
        Complain(nullptr, failure.what());
        return {};
    }
}

class Program : public wxApp {
public:
    bool OnInit() override {
        // The toolkit keeps the language to itself.
        std::setlocale(LC_CTYPE, "");
        std::setlocale(LC_MESSAGES, "");
        CWindowSystem::Install(&m_windows);
        SetAppName("mailengine");
        SetClassName("mailengine-desktop");
        auto* const window = new MainWindow(SettingsOrNone());
        window->Show();
        for (int i = 1; i < argc; ++i)
            window->Open(Utf8(argv[i]));
        window->OfferRecovered();
        return true;
    }
    int OnExit() override {
        CWindowSystem::Install(nullptr);
        return wxApp::OnExit();
    }
    // The arguments are this program's own; the toolkit has none.
    void OnInitCmdLine(wxCmdLineParser&) override {}
    bool OnCmdLineParsed(wxCmdLineParser&) override { return true; }

private:
    desktop::ToolkitWindows m_windows;
};

}  // namespace

wxIMPLEMENT_APP(Program);

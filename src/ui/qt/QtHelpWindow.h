// Orvane's own help, shown in a window of its own: the page compiled into the program, opened at
// a section, with what keeps the capability away right now above it and, where the desktop has
// them, a button that opens its keyboard shortcut settings. One window, raised when asked again.
#pragma once

#include <QLabel>
#include <QPushButton>
#include <QTextBrowser>
#include <QWidget>
#include <functional>
#include <string>

namespace orvane {

class QtHelpWindow final : public QWidget {
  public:
    struct Actions {
        // The desktop's keyboard settings, by name, and how to open them; no name when there
        // are none.
        std::string keyboardSettingsName;
        std::function<void()> openKeyboardSettings;
    };

    explicit QtHelpWindow(Actions actions);

    // Shows the page at `address` ("qrc:/orvane/help.html#keyboard-shortcut") under `reason`,
    // what keeps the capability away now (empty for nothing), and raises the window.
    void showPage(const std::string& address, const std::string& reason);

  private:
    Actions actions_;
    QLabel* reason_;
    QTextBrowser* page_;
    QPushButton* keyboardSettings_;
};

}  // namespace orvane

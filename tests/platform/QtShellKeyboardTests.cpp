// The shell's Qt windows worked from the keyboard, offscreen over the simulated machine: the tray
// menu by its arrows and Return, the welcome window by Tab, Space, Return and Escape.

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QTest>
#include <algorithm>
#include <memory>

#include "app/OrvaneApp.h"
#include "core/ScopedLogCapture.h"
#include "simulator/SimulatedMachine.h"
#include "support/OffscreenQtApplication.h"
#include "ui/qt/QtTrayMenu.h"
#include "ui/qt/QtWelcomeWindow.h"

namespace orvane {
namespace {

class QtShellKeyboardTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { ensureOffscreenQtApplication(); }
    void start() {
        app = std::make_unique<OrvaneApp>(machine.platform());
        app->finishLaunching();
        settle();
    }
    void settle() {
        for (int turn = 0; turn < 3; ++turn) {
            machine.settle();
            QApplication::processEvents();
        }
    }

    ScopedLogCapture quiet;
    simulator::SimulatedMachine machine;
    std::unique_ptr<OrvaneApp> app;
};

TEST_F(QtShellKeyboardTest, TheTrayMenuWorksFromTheKeyboard) {
    start();
    int terminations = 0;
    machine.application->setTerminationHandler([&] { ++terminations; });
    QtTrayMenu tray(app->menuBarScene(), Wording::linuxDesktop(), QIcon());
    QMenu* menu = nullptr;
    for (auto* widget : QApplication::topLevelWidgets()) {
        menu = menu != nullptr ? menu : qobject_cast<QMenu*>(widget);
    }
    ASSERT_NE(menu, nullptr);
    menu->popup(QPoint(10, 10));
    settle();
    // Down to "About Orvane", Down past the status line nobody can choose to "Settings…".
    QTest::keyClick(menu, Qt::Key_Down);
    QTest::keyClick(menu, Qt::Key_Down);
    ASSERT_NE(menu->activeAction(), nullptr);
    EXPECT_EQ(menu->activeAction()->text(), "Settings…");
    QTest::keyClick(menu, Qt::Key_Return);
    settle();
    EXPECT_EQ(machine.application->showSettingsWindowCount(), 1u);
    EXPECT_FALSE(menu->isVisible());

    // Up from the top wraps around to "Quit Orvane".
    menu->popup(QPoint(10, 10));
    settle();
    QTest::keyClick(menu, Qt::Key_Up);
    ASSERT_NE(menu->activeAction(), nullptr);
    EXPECT_EQ(menu->activeAction()->text(), "Quit Orvane");
    QTest::keyClick(menu, Qt::Key_Return);
    settle();
    EXPECT_EQ(terminations, 1);
}

TEST_F(QtShellKeyboardTest, TheWelcomeWindowAnswersTabSpaceReturnAndEscape) {
    machine.setPermission(PermissionCapability::accessibility, false);
    start();
    const auto& controller = app->delegate()->permissionOnboardingWindowController();
    ASSERT_TRUE(controller->window().has_value());
    QtWelcomeWindow window(controller->view(), Wording::linuxDesktop(), [] {});
    window.show();
    window.activateWindow();
    settle();
    // The program's mark heads the window at the size of its symbol, 56 points.
    const auto labels = window.findChildren<QLabel*>();
    const auto mark = std::find_if(labels.begin(), labels.end(),
                                   [](QLabel* label) { return !label->pixmap().isNull(); });
    ASSERT_NE(mark, labels.end());
    EXPECT_EQ((*mark)->pixmap().width(), 56);

    // Tab reaches the row's button; Space presses it, which asks again.
    QPushButton* focused = nullptr;
    for (int tabs = 0; tabs < 4 && !(focused && focused->text() == "Try Again"); ++tabs) {
        QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : &window,
                        Qt::Key_Tab);
        focused = qobject_cast<QPushButton*>(QApplication::focusWidget());
    }
    ASSERT_NE(focused, nullptr);
    ASSERT_EQ(focused->text(), "Try Again");
    QTest::keyClick(focused, Qt::Key_Space);
    settle();
    EXPECT_EQ(machine.permissions->accessibilityPromptCount(), 1u);

    // Return is "Continue" wherever the focus stands.
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    settle();
    EXPECT_FALSE(controller->window().has_value());

    // Escape is "Not now" in a window shown again.
    window.hide();
    app->delegate()->showWelcomeWindow();
    settle();
    QtWelcomeWindow again(controller->view(), Wording::linuxDesktop(), [] {});
    again.show();
    again.activateWindow();
    settle();
    QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : &again,
                    Qt::Key_Escape);
    // A button's own shortcut clicks it the way a press looks, a moment later.
    QTest::qWait(250);
    settle();
    EXPECT_FALSE(controller->window().has_value());
}

}  // namespace
}  // namespace orvane

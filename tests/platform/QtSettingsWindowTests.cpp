// The Settings window drawn offscreen from the real panes over the simulated machine, judged by its
// pixels: a badge's colour, a disabled toggle and a dimmed row read lighter than their neighbours.

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QImage>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTabWidget>
#include <memory>

#include "app/OrvaneApp.h"
#include "core/ScopedLogCapture.h"
#include "simulator/SimulatedMachine.h"
#include "support/OffscreenQtApplication.h"
#include "ui/qt/QtSettingsWindow.h"

namespace orvane {
namespace {

class QtSettingsWindowTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { ensureOffscreenQtApplication(); }
    void SetUp() override {
        machine.setPermission(PermissionCapability::screenRecording, false);
        app = std::make_unique<OrvaneApp>(machine.platform());
        const auto view = app->settingsView();
        window = std::make_unique<QtSettingsWindow>(
            view, Wording::linuxDesktop(), [view] { view->windowDidShow(); },
            [view] { view->windowDidHide(); });
        window->show();
    }
    // Settles the program and the window, then takes the window's picture.
    QImage picture() {
        for (int turn = 0; turn < 3; ++turn) {
            machine.settle();
            QApplication::processEvents();
        }
        return window->grab().toImage().convertToFormat(QImage::Format_RGB32);
    }
    template <typename Widget>
    Widget* find(const QString& text) {
        for (auto* widget : window->findChildren<Widget*>()) {
            if (widget->text() == text && widget->isVisible()) {
                return widget;
            }
        }
        ADD_FAILURE() << "no widget reads " << text.toStdString();
        return nullptr;
    }
    // The darkest grey level where the widget stands: the ink of its text.
    static int ink(const QImage& image, const QWidget* widget, const QWidget* root) {
        const QRect area(widget->mapTo(root, QPoint(0, 0)), widget->size());
        int darkest = 255;
        for (int y = area.top(); y <= area.bottom(); ++y) {
            for (int x = area.left(); x <= area.right(); ++x) {
                darkest = std::min(darkest, qGray(image.pixel(x, y)));
            }
        }
        return darkest;
    }
    static int pixelsLike(const QImage& image, QRgb colour) {
        int count = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const auto pixel = image.pixel(x, y);
                const int distance = std::abs(qRed(pixel) - qRed(colour)) +
                                     std::abs(qGreen(pixel) - qGreen(colour)) +
                                     std::abs(qBlue(pixel) - qBlue(colour));
                count += distance < 60 ? 1 : 0;
            }
        }
        return count;
    }

    ScopedLogCapture quiet;
    simulator::SimulatedMachine machine;
    std::unique_ptr<OrvaneApp> app;
    std::unique_ptr<QtSettingsWindow> window;
};

TEST_F(QtSettingsWindowTest, DisabledTogglesDimmedRowsAndBadgesShowInThePixels) {
    auto* tabs = window->findChild<QTabWidget*>();
    ASSERT_NE(tabs, nullptr);
    ASSERT_EQ(tabs->count(), 3);
    EXPECT_EQ(tabs->tabText(1), "Shortcuts");
    EXPECT_EQ(window->size(), QSize(580, 600));
    // Drawn by the style where the desktop has no icon theme.
    for (int index = 0; index < tabs->count(); ++index) {
        EXPECT_FALSE(tabs->tabIcon(index).pixmap(16).isNull()) << "tab " << index;
    }

    // Without Screen Recording the previews toggle is drawn disabled, still on.
    auto image = picture();
    auto* previews = find<QCheckBox>("Show live window previews");
    auto* menuIcon = find<QCheckBox>("Show tray icon");
    ASSERT_TRUE(previews && menuIcon);
    EXPECT_TRUE(previews->isChecked());
    EXPECT_GT(ink(image, previews, window.get()), ink(image, menuIcon, window.get()) + 40);

    // A gesture turned off dims its row on the card.
    app->settingsView()->select(SettingsPane::shortcuts);
    app->settingsView()
        ->pane(SettingsPane::shortcuts)
        .setToggle("Cycle backward with Shift-Tab", false);
    image = picture();
    auto* backward = find<QLabel>("Cycle backward");
    auto* forward = find<QLabel>("Cycle forward");
    ASSERT_TRUE(backward && forward);
    // Half opaque and in the secondary colour: lighter than the primary colour at half opacity.
    EXPECT_GT(ink(image, backward, window.get()), ink(image, forward, window.get()) + 150);

    // Badges: green while granted, orange while not.
    const QRgb green = qRgb(52, 168, 83);
    const QRgb orange = qRgb(240, 140, 0);
    app->settingsView()->select(SettingsPane::about);
    image = picture();
    EXPECT_GT(pixelsLike(image, green), 20);
    EXPECT_GT(pixelsLike(image, orange), 20) << "Screen Recording is not granted";
    // The pane asks again every second while it shows. A poll that finds nothing new leaves the
    // widgets alone, one that does updates them in place: the focus stays where the user put it.
    QPointer<QPushButton> showAgain = find<QPushButton>("Show again");
    ASSERT_TRUE(showAgain);
    showAgain->setFocus();
    const auto rebuilds = window->rebuildCount();
    machine.desktop->runLoop().advance(1.1);
    picture();
    machine.setPermission(PermissionCapability::screenRecording, true);
    machine.desktop->runLoop().advance(1.1);
    image = picture();
    EXPECT_EQ(pixelsLike(image, orange), 0);
    EXPECT_EQ(window->rebuildCount(), rebuilds);
    ASSERT_TRUE(showAgain);
    EXPECT_TRUE(showAgain->hasFocus());
}

}  // namespace
}  // namespace orvane

// The Settings window on a Linux desktop: a fixed 580 by 600 window of three tabs, each pane drawn
// from its view data in the desktop's wording and drawn again whenever the pane asks. Controls hand
// the user's changes back to the pane by their labels.
#pragma once

#include <QTabWidget>
#include <QWidget>
#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "app/SettingsView.h"
#include "core/Wording.h"

namespace orvane {

class QtSettingsWindow final : public QWidget {
  public:
    // `onClose` runs when the user closes the window (it is hidden, not destroyed).
    QtSettingsWindow(std::shared_ptr<SettingsView> view, Wording wording,
                     std::function<void()> onShow, std::function<void()> onClose);
    ~QtSettingsWindow() override;

    // Draws the pane again on the next turn of the event loop, once however often it is asked.
    // Only what changed is redrawn; widgets are rebuilt only when the pane's shape changed.
    void scheduleRedraw(SettingsPane pane);
    // How often a pane's widgets were built anew, the first drawing of each included.
    int rebuildCount() const { return rebuildCount_; }

  protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    void redraw(SettingsPane pane);

    // What a pane's widgets show, and how to bring them to a later content of the same shape.
    struct DrawnPane {
        PreferencesPaneContent content;
        std::vector<std::function<void(const PreferencesPaneContent&)>> updaters;
    };

    std::shared_ptr<SettingsView> view_;
    Wording wording_;
    std::function<void()> onShow_;
    std::function<void()> onClose_;
    QTabWidget* tabs_;
    std::array<bool, 3> redrawPending_{};
    std::array<std::optional<DrawnPane>, 3> drawn_{};
    int rebuildCount_ = 0;
    std::array<ObservationToken, 3> redrawObservations_{};
    ObservationToken selectionObservation_ = 0;
};

}  // namespace orvane

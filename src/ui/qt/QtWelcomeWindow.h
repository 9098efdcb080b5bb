// The welcome window on a Linux desktop, drawn from the onboarding view's content in the desktop's
// wording: the permissions with their state, and the buttons. Drawn again when the permission table
// changes or a row's button is pressed.
#pragma once

#include <QPushButton>
#include <QWidget>
#include <functional>
#include <memory>

#include "core/Wording.h"
#include "permissions/PermissionOnboardingView.h"

namespace orvane {

class QtWelcomeWindow final : public QWidget {
  public:
    // `onUserClose` runs when the title bar's close button is pressed.
    QtWelcomeWindow(std::shared_ptr<PermissionOnboardingView> view, Wording wording,
                    std::function<void()> onUserClose);
    ~QtWelcomeWindow() override;

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    void redraw();
    void scheduleRedraw();

    std::shared_ptr<PermissionOnboardingView> view_;
    Wording wording_;
    std::function<void()> onUserClose_;
    QWidget* page_ = nullptr;
    // The button of the default action in the page drawn last.
    QPushButton* defaultButton_ = nullptr;
    bool redrawPending_ = false;
    ObservationToken tableObservation_ = 0;
};

}  // namespace orvane

// The program's icon in the menu bar (the tray on Linux): its title, its image, and whether it
// stands there at all, bound both ways to `menuBarIconVisible`; its menu is a `MenuContent`.
#pragma once

#include <memory>
#include <string>

#include "app/MenuContent.h"
#include "core/Observable.h"
#include "preferences/PreferencesStore.h"

namespace orvane {

class MenuBarScene {
  public:
    MenuBarScene(std::shared_ptr<PreferencesStore> preferencesStore,
                 std::unique_ptr<MenuContent> content);
    ~MenuBarScene();
    MenuBarScene(const MenuBarScene&) = delete;
    MenuBarScene& operator=(const MenuBarScene&) = delete;

    std::string title() const { return "Orvane"; }
    // The name of the image asset.
    std::string imageName() const { return "MenuBarIcon"; }

    // Follows the preference; the platform removing the icon writes the preference back.
    Observable<bool>& isInserted() { return isInserted_; }
    void setInserted(bool inserted);

    MenuContent& content() { return *content_; }

  private:
    std::shared_ptr<PreferencesStore> preferencesStore_;
    std::unique_ptr<MenuContent> content_;
    Observable<bool> isInserted_;
    ObservationToken preferencesObservation_ = 0;
};

}  // namespace orvane

#include "app/MenuBarScene.h"

#include <utility>

namespace orvane {

MenuBarScene::MenuBarScene(std::shared_ptr<PreferencesStore> preferencesStore,
                           std::unique_ptr<MenuContent> content)
    : preferencesStore_(std::move(preferencesStore)),
      content_(std::move(content)),
      isInserted_(preferencesStore_->preferences().menuBarIconVisible) {
    preferencesObservation_ =
        preferencesStore_->observePreferences([this](const SwitcherPreferences& preferences) {
            isInserted_.set(preferences.menuBarIconVisible);
        });
}

MenuBarScene::~MenuBarScene() {
    preferencesStore_->removePreferencesObserver(preferencesObservation_);
}

void MenuBarScene::setInserted(bool inserted) {
    // The binding writes the whole record, not one field in place.
    auto preferences = preferencesStore_->preferences();
    preferences.menuBarIconVisible = inserted;
    preferencesStore_->setPreferences(preferences);
}

}  // namespace orvane

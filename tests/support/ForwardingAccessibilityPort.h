// An Accessibility port that passes every call to another one, for test doubles that record or
// alter a few calls and leave the rest to the simulated desktop.
#pragma once

#include <memory>
#include <utility>

#include "platform/AccessibilityPort.h"

namespace orvane {

class ForwardingAccessibilityPort : public AccessibilityPort {
  public:
    explicit ForwardingAccessibilityPort(std::shared_ptr<AccessibilityPort> inner)
        : inner_(std::move(inner)) {}

    AttributeReading copyAttributeValue(const AccessibilityElementHandle& element,
                                        std::string_view attribute) const override {
        return inner_->copyAttributeValue(element, attribute);
    }
    AccessibilityError setAttributeValue(const AccessibilityElementHandle& element,
                                         std::string_view attribute,
                                         const AccessibilityValue& value) override {
        return inner_->setAttributeValue(element, attribute, value);
    }
    AccessibilityError performAction(const AccessibilityElementHandle& element,
                                     std::string_view action) override {
        return inner_->performAction(element, action);
    }
    AccessibilityElementHandle createApplicationElement(ProcessIdentifier process) override {
        return inner_->createApplicationElement(process);
    }
    AccessibilityError setMessagingTimeout(const AccessibilityElementHandle& element,
                                           float seconds) override {
        return inner_->setMessagingTimeout(element, seconds);
    }
    ProcessReading processIdentifier(const AccessibilityElementHandle& element) const override {
        return inner_->processIdentifier(element);
    }
    ObserverCreation createObserver(ProcessIdentifier process, ObserverCallback callback) override {
        return inner_->createObserver(process, std::move(callback));
    }
    AccessibilityError addNotification(const AccessibilityObserverHandle& observer,
                                       const AccessibilityElementHandle& element,
                                       std::string_view notification, void* reference) override {
        return inner_->addNotification(observer, element, notification, reference);
    }
    AccessibilityError removeNotification(const AccessibilityObserverHandle& observer,
                                          const AccessibilityElementHandle& element,
                                          std::string_view notification) override {
        return inner_->removeNotification(observer, element, notification);
    }
    RunLoopSourceHandle observerRunLoopSource(
        const AccessibilityObserverHandle& observer) override {
        return inner_->observerRunLoopSource(observer);
    }

  protected:
    std::shared_ptr<AccessibilityPort> inner_;
};

}  // namespace orvane

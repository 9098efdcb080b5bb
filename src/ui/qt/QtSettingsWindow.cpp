#include "ui/qt/QtSettingsWindow.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QCloseEvent>
#include <QFontDatabase>
#include <QFrame>
#include <QGraphicsOpacityEffect>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QToolButton>
#include <QVBoxLayout>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>

#include "ui/qt/QtSymbols.h"

namespace orvane {

namespace {

QString text(const Wording& wording, const std::string& value) {
    return QString::fromStdString(wording.apply(value));
}

QLabel* footnote(const QString& value) {
    auto* label = new QLabel(value);
    label->setWordWrap(true);
    auto font = label->font();
    font.setPointSizeF(font.pointSizeF() * 0.85);
    label->setFont(font);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

void applyBadge(QLabel* label, const PermissionStatusBadge& status, const Wording& wording) {
    const char* rgb = status.color() == BadgeColor::green ? "52, 168, 83" : "240, 140, 0";
    label->setText(QString::fromUtf8(status.isGranted ? "✔ " : "⚠ ") +
                   text(wording, std::string(status.text())));
    label->setStyleSheet(
        QStringLiteral("QLabel { color: rgb(%1); background: rgba(%1, %2); border: %3px solid "
                       "rgba(%1, %4); border-radius: 9px; padding: %5px %6px; font-weight: 500; }")
            .arg(QLatin1String(rgb))
            .arg(PermissionStatusBadge::fillOpacity)
            .arg(PermissionStatusBadge::outlineWidth)
            .arg(PermissionStatusBadge::outlineOpacity)
            .arg(PermissionStatusBadge::verticalPadding)
            .arg(PermissionStatusBadge::horizontalPadding));
}

void applyButton(QPushButton* control, const PaneButton& item, const Wording& wording) {
    control->setEnabled(item.isEnabled);
    control->setToolTip(text(wording, item.tooltip));
}

// What a control is, apart from the state it shows: two contents of the same shape differ only
// in what existing widgets can show, so the widgets stay and the focus with them.
std::string shapeOf(const PaneRow& row) {
    return std::visit(
        [index = row.index()](const auto& item) -> std::string {
            using Item = std::decay_t<decltype(item)>;
            std::string key = std::to_string(index) + ":";
            if constexpr (std::is_same_v<Item, PaneToggle>) {
                return key + item.label;
            } else if constexpr (std::is_same_v<Item, PanePicker>) {
                std::string segments;
                for (const auto& segment : item.segments) {
                    segments += segment + "|";
                }
                return key + item.label + "=" + segments;
            } else if constexpr (std::is_same_v<Item, PaneKeyCap>) {
                return key + item.title;
            } else if constexpr (std::is_same_v<Item, PaneValue>) {
                return key + item.label;
            } else if constexpr (std::is_same_v<Item, PaneActionRow>) {
                return key + item.title + (item.badge ? "+badge|" : "|") + item.button.title;
            } else {
                return key + item.title;
            }
        },
        row);
}

std::vector<std::string> shapeOf(const PreferencesPaneContent& content) {
    std::vector<std::string> shape{std::to_string(static_cast<int>(content.style))};
    for (const auto& section : content.sections) {
        shape.push_back("section:" + section.header + (section.description.empty() ? "" : "+"));
        for (const auto& row : section.rows) {
            shape.push_back(shapeOf(row));
        }
        for (const auto& item : section.footer) {
            const auto* button = std::get_if<PaneButton>(&item);
            shape.push_back(button ? "footer-button:" + button->title : "footnote");
        }
    }
    return shape;
}

// One pane's content as widgets; every control calls back into the pane by its label. Each
// widget that shows state gets an updater, which later contents of the same shape go through.
class PaneBuilder {
  public:
    using Updater = std::function<void(const PreferencesPaneContent&)>;

    PaneBuilder(PreferencesPaneView& pane, const Wording& wording)
        : pane_(pane), wording_(wording) {}

    QWidget* build(const PreferencesPaneContent& content) {
        auto* page = new QWidget;
        auto* column = new QVBoxLayout(page);
        const bool card = content.style == PaneStyle::referenceCard;
        column->setContentsMargins(ReferenceCardLayout::margin, ReferenceCardLayout::margin,
                                   ReferenceCardLayout::margin, ReferenceCardLayout::margin);
        column->setSpacing(static_cast<int>(ReferenceCardLayout::sectionSpacing));
        for (std::size_t sectionIndex = 0; sectionIndex < content.sections.size(); ++sectionIndex) {
            const auto& section = content.sections[sectionIndex];
            auto* part = new QVBoxLayout;
            part->setSpacing(static_cast<int>(ReferenceCardLayout::partSpacing));
            auto* header = new QLabel(text(wording_, section.header));
            auto font = header->font();
            font.setBold(true);
            header->setFont(font);
            part->addWidget(header);
            if (!section.description.empty()) {
                auto* description = footnote(text(wording_, section.description));
                part->addWidget(description);
                updaters_.push_back([&wording = wording_, description,
                                     sectionIndex](const auto& later) {
                    description->setText(text(wording, later.sections[sectionIndex].description));
                });
            }
            if (!section.rows.empty()) {
                auto* box = new QFrame;
                box->setFrameShape(QFrame::StyledPanel);
                auto* rows = new QVBoxLayout(box);
                rows->setSpacing(static_cast<int>(ReferenceCardLayout::rowSpacing));
                if (card) {
                    rows->setContentsMargins(8, ReferenceCardLayout::boxVerticalMargin, 8,
                                             ReferenceCardLayout::boxVerticalMargin);
                }
                for (std::size_t rowIndex = 0; rowIndex < section.rows.size(); ++rowIndex) {
                    rows->addLayout(std::visit(
                        [&](const auto& item) { return this->row(item, sectionIndex, rowIndex); },
                        section.rows[rowIndex]));
                }
                part->addWidget(box);
            }
            for (std::size_t itemIndex = 0; itemIndex < section.footer.size(); ++itemIndex) {
                const auto& item = section.footer[itemIndex];
                if (const auto* note = std::get_if<PaneFootnote>(&item)) {
                    auto* label = footnote(text(wording_, note->text));
                    part->addWidget(label);
                    updaters_.push_back(
                        [&wording = wording_, label, sectionIndex, itemIndex](const auto& later) {
                            const auto& footer = later.sections[sectionIndex].footer[itemIndex];
                            label->setText(text(wording, std::get<PaneFootnote>(footer).text));
                        });
                } else {
                    auto* line = new QHBoxLayout;
                    auto* control = button(std::get<PaneButton>(item));
                    updaters_.push_back(
                        [&wording = wording_, control, sectionIndex, itemIndex](const auto& later) {
                            const auto& footer = later.sections[sectionIndex].footer[itemIndex];
                            applyButton(control, std::get<PaneButton>(footer), wording);
                        });
                    line->addWidget(control);
                    line->addStretch();
                    part->addLayout(line);
                }
            }
            column->addLayout(part);
        }
        column->addStretch();
        return page;
    }

    std::vector<Updater> takeUpdaters() { return std::move(updaters_); }

  private:
    template <typename Item>
    static const Item& rowOf(const PreferencesPaneContent& content, std::size_t section,
                             std::size_t row) {
        return std::get<Item>(content.sections[section].rows[row]);
    }

    QPushButton* button(const PaneButton& item) {
        auto* control = new QPushButton(text(wording_, item.title));
        applyButton(control, item, wording_);
        if (item.isSmall) {
            auto font = control->font();
            font.setPointSizeF(font.pointSizeF() * 0.85);
            control->setFont(font);
        }
        QObject::connect(control, &QPushButton::clicked,
                         [&pane = pane_, title = item.title] { pane.press(title); });
        return control;
    }

    QHBoxLayout* titled(const std::string& title, QLabel** label = nullptr) {
        auto* line = new QHBoxLayout;
        auto* heading = new QLabel(text(wording_, title));
        line->addWidget(heading);
        line->addStretch();
        if (label != nullptr) {
            *label = heading;
        }
        return line;
    }

    QHBoxLayout* row(const PaneToggle& item, std::size_t section, std::size_t index) {
        auto* line = new QHBoxLayout;
        auto* control = new QCheckBox(text(wording_, item.label));
        control->setChecked(item.isOn);
        control->setEnabled(item.isEnabled);
        QObject::connect(
            control, &QCheckBox::toggled,
            [&pane = pane_, label = item.label](bool on) { pane.setToggle(label, on); });
        updaters_.push_back([control, section, index](const auto& later) {
            const auto& toggle = rowOf<PaneToggle>(later, section, index);
            const QSignalBlocker quiet(control);
            control->setChecked(toggle.isOn);
            control->setEnabled(toggle.isEnabled);
        });
        line->addWidget(control);
        line->addStretch();
        return line;
    }

    QHBoxLayout* row(const PanePicker& item, std::size_t section, std::size_t index) {
        auto* line = titled(item.label);
        auto* segments = new QWidget;
        auto* buttons = new QHBoxLayout(segments);
        buttons->setContentsMargins(0, 0, 0, 0);
        buttons->setSpacing(0);
        auto* group = new QButtonGroup(segments);
        for (std::size_t segment = 0; segment < item.segments.size(); ++segment) {
            auto* control = new QToolButton;
            control->setText(text(wording_, item.segments[segment]));
            control->setCheckable(true);
            control->setChecked(segment == item.selectedIndex);
            control->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
            group->addButton(control, static_cast<int>(segment));
            buttons->addWidget(control);
        }
        if (item.maximumWidth) {
            segments->setMaximumWidth(static_cast<int>(*item.maximumWidth));
        }
        QObject::connect(group, &QButtonGroup::idClicked,
                         [&pane = pane_, label = item.label](int segment) {
                             pane.pick(label, static_cast<std::size_t>(segment));
                         });
        updaters_.push_back([group, section, index](const auto& later) {
            const auto selected = rowOf<PanePicker>(later, section, index).selectedIndex;
            if (auto* control = group->button(static_cast<int>(selected))) {
                const QSignalBlocker quiet(group);
                control->setChecked(true);
            }
        });
        line->addWidget(segments);
        return line;
    }

    QHBoxLayout* row(const PaneKeyCap& item, std::size_t section, std::size_t index) {
        QLabel* title = nullptr;
        auto* line = titled(item.title, &title);
        auto* cap = new QLabel(text(wording_, item.keyCap));
        cap->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
        cap->setAlignment(Qt::AlignCenter);
        cap->setMinimumWidth(static_cast<int>(ReferenceCardLayout::keyCapMinimumWidth));
        cap->setStyleSheet(QStringLiteral("QLabel { background: rgba(128, 128, 128, 0.18); "
                                          "border-radius: %1px; padding: %2px %3px; }")
                               .arg(ReferenceCardLayout::keyCapCornerRadius)
                               .arg(ReferenceCardLayout::keyCapVerticalPadding)
                               .arg(ReferenceCardLayout::keyCapHorizontalPadding));
        line->addWidget(cap);
        std::vector<QGraphicsOpacityEffect*> effects;
        for (auto* widget : {static_cast<QWidget*>(title), static_cast<QWidget*>(cap)}) {
            auto* effect = new QGraphicsOpacityEffect(widget);
            widget->setGraphicsEffect(effect);
            effects.push_back(effect);
        }
        // A dimmed row has its title in the secondary colour, and the whole row half opaque.
        auto apply = [&wording = wording_, title, cap, effects](const PaneKeyCap& later) {
            cap->setText(text(wording, later.keyCap));
            title->setForegroundRole(later.isDimmed ? QPalette::PlaceholderText
                                                    : QPalette::WindowText);
            for (auto* effect : effects) {
                effect->setOpacity(later.isDimmed ? ReferenceCardLayout::dimmedOpacity : 1.0);
            }
        };
        apply(item);
        updaters_.push_back([apply, section, index](const auto& later) {
            apply(rowOf<PaneKeyCap>(later, section, index));
        });
        return line;
    }

    QHBoxLayout* row(const PaneValue& item, std::size_t section, std::size_t index) {
        auto* line = titled(item.label);
        auto* value = new QLabel(text(wording_, item.value));
        value->setTextInteractionFlags(Qt::TextSelectableByMouse);
        updaters_.push_back([&wording = wording_, value, section, index](const auto& later) {
            value->setText(text(wording, rowOf<PaneValue>(later, section, index).value));
        });
        line->addWidget(value);
        return line;
    }

    QHBoxLayout* row(const PaneActionRow& item, std::size_t section, std::size_t index) {
        auto* line = new QHBoxLayout;
        line->setSpacing(12);
        line->addWidget(new QLabel(text(wording_, item.title)));
        QLabel* status = nullptr;
        if (item.badge) {
            status = new QLabel;
            applyBadge(status, *item.badge, wording_);
            line->addWidget(status);
        }
        line->addStretch();
        auto* control = button(item.button);
        line->addWidget(control);
        updaters_.push_back(
            [&wording = wording_, status, control, section, index](const auto& later) {
                const auto& action = rowOf<PaneActionRow>(later, section, index);
                if (status != nullptr && action.badge) {
                    applyBadge(status, *action.badge, wording);
                }
                applyButton(control, action.button, wording);
            });
        return line;
    }

    QHBoxLayout* row(const PaneButton& item, std::size_t section, std::size_t index) {
        auto* line = new QHBoxLayout;
        auto* control = button(item);
        updaters_.push_back([&wording = wording_, control, section, index](const auto& later) {
            applyButton(control, rowOf<PaneButton>(later, section, index), wording);
        });
        line->addWidget(control);
        line->addStretch();
        return line;
    }

    PreferencesPaneView& pane_;
    const Wording& wording_;
    std::vector<Updater> updaters_;
};

std::size_t indexOf(SettingsPane pane) {
    return static_cast<std::size_t>(pane);
}

}  // namespace

QtSettingsWindow::QtSettingsWindow(std::shared_ptr<SettingsView> view, Wording wording,
                                   std::function<void()> onShow, std::function<void()> onClose)
    : view_(std::move(view)),
      wording_(std::move(wording)),
      onShow_(std::move(onShow)),
      onClose_(std::move(onClose)),
      tabs_(new QTabWidget(this)) {
    setFixedSize(static_cast<int>(SettingsView::frame.width),
                 static_cast<int>(SettingsView::frame.height));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(tabs_);
    for (const auto& tab : SettingsView::tabs) {
        auto* scroll = new QScrollArea;
        scroll->setWidgetResizable(true);
        scroll->setFrameShape(QFrame::NoFrame);
        scroll->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
        tabs_->addTab(scroll, QtSymbols::icon(tab.symbol), QString::fromUtf8(tab.title));
        redrawObservations_[indexOf(tab.pane)] = view_->pane(tab.pane).redraws().subscribe(
            [this, pane = tab.pane](const std::uint64_t&) { scheduleRedraw(pane); });
        redraw(tab.pane);
    }
    tabs_->setCurrentIndex(static_cast<int>(indexOf(view_->selectedPane().value())));
    QObject::connect(tabs_, &QTabWidget::currentChanged, [this](int index) {
        view_->select(SettingsView::tabs[static_cast<std::size_t>(index)].pane);
    });
    // The selection also moves from outside: the open-settings route.
    selectionObservation_ = view_->selectedPane().subscribe([this](const SettingsPane& pane) {
        tabs_->setCurrentIndex(static_cast<int>(indexOf(pane)));
    });
}

QtSettingsWindow::~QtSettingsWindow() {
    for (const auto& tab : SettingsView::tabs) {
        view_->pane(tab.pane).redraws().unsubscribe(redrawObservations_[indexOf(tab.pane)]);
    }
    view_->selectedPane().unsubscribe(selectionObservation_);
}

void QtSettingsWindow::scheduleRedraw(SettingsPane pane) {
    auto& pending = redrawPending_[indexOf(pane)];
    if (pending) {
        return;
    }
    pending = true;
    // Never inside the handler of a control that the redraw replaces.
    QMetaObject::invokeMethod(
        this,
        [this, pane] {
            redrawPending_[indexOf(pane)] = false;
            redraw(pane);
        },
        Qt::QueuedConnection);
}

void QtSettingsWindow::redraw(SettingsPane pane) {
    auto& view = view_->pane(pane);
    auto content = view.content();
    auto& drawn = drawn_[indexOf(pane)];
    // Widgets are replaced only when the pane's shape changed: a poll that finds nothing new
    // leaves everything alone, and one that does updates the widgets in place, so the keyboard
    // focus and a tooltip survive it.
    if (drawn) {
        if (drawn->content == content) {
            return;
        }
        if (shapeOf(drawn->content) == shapeOf(content)) {
            for (const auto& update : drawn->updaters) {
                update(content);
            }
            drawn->content = std::move(content);
            return;
        }
    }
    auto* scroll = static_cast<QScrollArea*>(tabs_->widget(static_cast<int>(indexOf(pane))));
    const int position = scroll->verticalScrollBar()->value();
    PaneBuilder builder(view, wording_);
    scroll->setWidget(builder.build(content));
    scroll->verticalScrollBar()->setValue(position);
    drawn = DrawnPane{std::move(content), builder.takeUpdaters()};
    ++rebuildCount_;
}

void QtSettingsWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    onShow_();
}

void QtSettingsWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
    hide();
    onClose_();
}

}  // namespace orvane

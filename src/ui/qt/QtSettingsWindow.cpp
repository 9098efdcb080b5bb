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
#include <QToolButton>
#include <QVBoxLayout>
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

QLabel* badge(const PermissionStatusBadge& status) {
    const char* rgb = status.color() == BadgeColor::green ? "52, 168, 83" : "240, 140, 0";
    auto* label = new QLabel(
        QString::fromUtf8(status.isGranted ? "✔ " : "⚠ ") +
        QString::fromUtf8(status.text().data(), static_cast<qsizetype>(status.text().size())));
    label->setStyleSheet(
        QStringLiteral("QLabel { color: rgb(%1); background: rgba(%1, %2); border: %3px solid "
                       "rgba(%1, %4); border-radius: 9px; padding: %5px %6px; font-weight: 500; }")
            .arg(QLatin1String(rgb))
            .arg(PermissionStatusBadge::fillOpacity)
            .arg(PermissionStatusBadge::outlineWidth)
            .arg(PermissionStatusBadge::outlineOpacity)
            .arg(PermissionStatusBadge::verticalPadding)
            .arg(PermissionStatusBadge::horizontalPadding));
    return label;
}

// One pane's content as widgets; every control calls back into the pane by its label.
class PaneBuilder {
  public:
    PaneBuilder(PreferencesPaneView& pane, const Wording& wording)
        : pane_(pane), wording_(wording) {}

    QWidget* build(const PreferencesPaneContent& content) {
        auto* page = new QWidget;
        auto* column = new QVBoxLayout(page);
        const bool card = content.style == PaneStyle::referenceCard;
        column->setContentsMargins(ReferenceCardLayout::margin, ReferenceCardLayout::margin,
                                   ReferenceCardLayout::margin, ReferenceCardLayout::margin);
        column->setSpacing(static_cast<int>(ReferenceCardLayout::sectionSpacing));
        for (const auto& section : content.sections) {
            auto* part = new QVBoxLayout;
            part->setSpacing(static_cast<int>(ReferenceCardLayout::partSpacing));
            auto* header = new QLabel(text(wording_, section.header));
            auto font = header->font();
            font.setBold(true);
            header->setFont(font);
            part->addWidget(header);
            if (!section.description.empty()) {
                part->addWidget(footnote(text(wording_, section.description)));
            }
            auto* box = new QFrame;
            box->setFrameShape(QFrame::StyledPanel);
            auto* rows = new QVBoxLayout(box);
            rows->setSpacing(static_cast<int>(ReferenceCardLayout::rowSpacing));
            if (card) {
                rows->setContentsMargins(8, ReferenceCardLayout::boxVerticalMargin, 8,
                                         ReferenceCardLayout::boxVerticalMargin);
            }
            for (const auto& row : section.rows) {
                rows->addLayout(
                    std::visit([this](const auto& item) { return this->row(item); }, row));
            }
            part->addWidget(box);
            for (const auto& item : section.footer) {
                if (const auto* note = std::get_if<PaneFootnote>(&item)) {
                    part->addWidget(footnote(text(wording_, note->text)));
                } else {
                    auto* line = new QHBoxLayout;
                    line->addWidget(button(std::get<PaneButton>(item)));
                    line->addStretch();
                    part->addLayout(line);
                }
            }
            column->addLayout(part);
        }
        column->addStretch();
        return page;
    }

  private:
    QPushButton* button(const PaneButton& item) {
        auto* control = new QPushButton(text(wording_, item.title));
        control->setEnabled(item.isEnabled);
        control->setToolTip(text(wording_, item.tooltip));
        if (item.isSmall) {
            auto font = control->font();
            font.setPointSizeF(font.pointSizeF() * 0.85);
            control->setFont(font);
        }
        QObject::connect(control, &QPushButton::clicked,
                         [&pane = pane_, title = item.title] { pane.press(title); });
        return control;
    }

    QHBoxLayout* titled(const std::string& title) {
        auto* line = new QHBoxLayout;
        line->addWidget(new QLabel(text(wording_, title)));
        line->addStretch();
        return line;
    }

    QHBoxLayout* row(const PaneToggle& item) {
        auto* line = new QHBoxLayout;
        auto* control = new QCheckBox(text(wording_, item.label));
        control->setChecked(item.isOn);
        control->setEnabled(item.isEnabled);
        QObject::connect(
            control, &QCheckBox::toggled,
            [&pane = pane_, label = item.label](bool on) { pane.setToggle(label, on); });
        line->addWidget(control);
        line->addStretch();
        return line;
    }

    QHBoxLayout* row(const PanePicker& item) {
        auto* line = titled(item.label);
        auto* segments = new QWidget;
        auto* buttons = new QHBoxLayout(segments);
        buttons->setContentsMargins(0, 0, 0, 0);
        buttons->setSpacing(0);
        auto* group = new QButtonGroup(segments);
        for (std::size_t index = 0; index < item.segments.size(); ++index) {
            auto* segment = new QToolButton;
            segment->setText(text(wording_, item.segments[index]));
            segment->setCheckable(true);
            segment->setChecked(index == item.selectedIndex);
            segment->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
            group->addButton(segment, static_cast<int>(index));
            buttons->addWidget(segment);
        }
        if (item.maximumWidth) {
            segments->setMaximumWidth(static_cast<int>(*item.maximumWidth));
        }
        QObject::connect(group, &QButtonGroup::idClicked,
                         [&pane = pane_, label = item.label](int index) {
                             pane.pick(label, static_cast<std::size_t>(index));
                         });
        line->addWidget(segments);
        return line;
    }

    QHBoxLayout* row(const PaneKeyCap& item) {
        auto* line = titled(item.title);
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
        if (item.isDimmed) {
            for (int index = 0; index < line->count(); ++index) {
                if (auto* widget = line->itemAt(index)->widget()) {
                    auto* effect = new QGraphicsOpacityEffect(widget);
                    effect->setOpacity(ReferenceCardLayout::dimmedOpacity);
                    widget->setGraphicsEffect(effect);
                }
            }
        }
        return line;
    }

    QHBoxLayout* row(const PaneValue& item) {
        auto* line = titled(item.label);
        auto* value = new QLabel(text(wording_, item.value));
        value->setTextInteractionFlags(Qt::TextSelectableByMouse);
        line->addWidget(value);
        return line;
    }

    QHBoxLayout* row(const PaneActionRow& item) {
        auto* line = new QHBoxLayout;
        line->setSpacing(12);
        line->addWidget(new QLabel(text(wording_, item.title)));
        if (item.badge) {
            line->addWidget(badge(*item.badge));
        }
        line->addStretch();
        line->addWidget(button(item.button));
        return line;
    }

    QHBoxLayout* row(const PaneButton& item) {
        auto* line = new QHBoxLayout;
        line->addWidget(button(item));
        line->addStretch();
        return line;
    }

    PreferencesPaneView& pane_;
    const Wording& wording_;
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
    auto* scroll = static_cast<QScrollArea*>(tabs_->widget(static_cast<int>(indexOf(pane))));
    const int position = scroll->verticalScrollBar()->value();
    auto& view = view_->pane(pane);
    scroll->setWidget(PaneBuilder(view, wording_).build(view.content()));
    scroll->verticalScrollBar()->setValue(position);
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

#include "ui/qt/QtWelcomeWindow.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>
#include <utility>

#include "ui/qt/QtSymbols.h"

namespace orvane {

namespace {

QFont fontFor(const QFont& base, const OnboardingFont& font) {
    QFont result = base;
    double scale = 1.0;
    if (const auto* style = std::get_if<OnboardingTextStyle>(&font.size)) {
        switch (*style) {
            case OnboardingTextStyle::title:
                scale = 1.9;
                break;
            case OnboardingTextStyle::title3:
                scale = 1.35;
                break;
            case OnboardingTextStyle::subheadline:
            case OnboardingTextStyle::callout:
                scale = 0.95;
                break;
            case OnboardingTextStyle::footnote:
            case OnboardingTextStyle::caption2:
                scale = 0.82;
                break;
            case OnboardingTextStyle::body:
                break;
        }
    }
    result.setPointSizeF(base.pointSizeF() * scale);
    result.setWeight(font.weight == OnboardingFontWeight::semibold ? QFont::DemiBold
                     : font.weight == OnboardingFontWeight::medium ? QFont::Medium
                                                                   : QFont::Normal);
    return result;
}

QLabel* label(const OnboardingText& text, const Wording& wording, const QFont& base) {
    auto* result = new QLabel(QString::fromStdString(wording.apply(text.text)));
    result->setFont(fontFor(base, text.font));
    result->setWordWrap(true);
    if (text.color == OnboardingColorRole::secondary) {
        result->setForegroundRole(QPalette::PlaceholderText);
    } else if (text.color == OnboardingColorRole::green) {
        result->setStyleSheet(QStringLiteral("color: rgb(52, 168, 83);"));
    }
    return result;
}

QLabel* symbol(const OnboardingSymbol& symbol, int side) {
    auto* result = new QLabel;
    result->setPixmap(QtSymbols::icon(symbol.name).pixmap(side, side));
    result->setFixedWidth(side);
    return result;
}

}  // namespace

QtWelcomeWindow::QtWelcomeWindow(std::shared_ptr<PermissionOnboardingView> view, Wording wording,
                                 std::function<void()> onUserClose)
    : view_(std::move(view)), wording_(std::move(wording)), onUserClose_(std::move(onUserClose)) {
    const auto layout = view_->content().layout;
    setFixedSize(static_cast<int>(layout.frame.width), static_cast<int>(layout.frame.height));
    setLayout(new QVBoxLayout);
    this->layout()->setContentsMargins(0, 0, 0, 0);
    tableObservation_ = view_->permissionStatusCoordinator()->statusByCapability().subscribe(
        [this](const auto&) { scheduleRedraw(); });
    redraw();
    // Return is the default action wherever the focus stands, as in a dialog; a plain widget's
    // default button answers no key by itself.
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter}) {
        new QShortcut(QKeySequence(key), this, [this] {
            if (defaultButton_ != nullptr && defaultButton_->isEnabled()) {
                defaultButton_->click();
            }
        });
    }
}

QtWelcomeWindow::~QtWelcomeWindow() {
    view_->permissionStatusCoordinator()->statusByCapability().unsubscribe(tableObservation_);
}

void QtWelcomeWindow::scheduleRedraw() {
    if (redrawPending_) {
        return;
    }
    redrawPending_ = true;
    // Never inside the handler of a button that the redraw replaces.
    QMetaObject::invokeMethod(
        this,
        [this] {
            redrawPending_ = false;
            redraw();
        },
        Qt::QueuedConnection);
}

void QtWelcomeWindow::redraw() {
    const auto content = view_->content();
    const auto& metrics = content.layout;
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    const int margin = static_cast<int>(metrics.horizontalMargin);
    column->setContentsMargins(margin, static_cast<int>(metrics.iconTopMargin), margin,
                               static_cast<int>(metrics.buttonsBottomMargin));
    column->setSpacing(static_cast<int>(metrics.headerLineSpacing));
    const auto* iconSize = std::get_if<OnboardingPointSize>(&content.icon.font.size);
    auto* icon = symbol(content.icon, iconSize ? static_cast<int>(iconSize->points) : 56);
    column->addWidget(icon, 0, Qt::AlignHCenter);
    for (const auto* text : {&content.title, &content.subtitle}) {
        auto* line = label(*text, wording_, font());
        line->setAlignment(Qt::AlignHCenter);
        column->addWidget(line);
    }
    column->addSpacing(static_cast<int>(metrics.sectionSpacing));
    for (const auto& row : content.rows) {
        auto* line = new QHBoxLayout;
        line->setContentsMargins(static_cast<int>(metrics.rowsHorizontalMargin) - margin, 0, 0, 0);
        line->setSpacing(static_cast<int>(metrics.rowItemSpacing));
        line->addWidget(symbol(row.icon, static_cast<int>(metrics.rowIconWidth)), 0, Qt::AlignTop);
        auto* texts = new QVBoxLayout;
        texts->setSpacing(static_cast<int>(metrics.rowTextLineSpacing));
        auto* heading = new QHBoxLayout;
        heading->setSpacing(static_cast<int>(metrics.rowTitleItemSpacing));
        heading->addWidget(label(row.title, wording_, font()));
        if (row.badge) {
            auto* badge = label(row.badge->text, wording_, font());
            badge->setWordWrap(false);
            badge->setStyleSheet(
                QStringLiteral("background: rgba(128, 128, 128, 0.22); border-radius: 7px; "
                               "padding: %1px %2px;")
                    .arg(metrics.badgeVerticalPadding)
                    .arg(metrics.badgeHorizontalPadding));
            heading->addWidget(badge);
        }
        heading->addStretch();
        texts->addLayout(heading);
        texts->addWidget(label(row.description, wording_, font()));
        line->addLayout(texts, 1);
        line->addSpacing(static_cast<int>(metrics.minimumActionSpacing));
        if (row.action.kind == PermissionRowActionKind::grantedLabel) {
            auto* granted = new QHBoxLayout;
            if (row.action.symbol) {
                granted->addWidget(symbol(*row.action.symbol, 16));
            }
            granted->addWidget(label(row.action.text, wording_, font()));
            line->addLayout(granted);
        } else {
            auto* button =
                new QPushButton(QString::fromStdString(wording_.apply(row.action.text.text)));
            QObject::connect(button, &QPushButton::clicked, [this, capability = row.capability] {
                view_->pressRowAction(capability);
                scheduleRedraw();
            });
            line->addWidget(button, 0, Qt::AlignVCenter);
        }
        column->addLayout(line);
        column->addSpacing(static_cast<int>(metrics.rowSpacing));
    }
    column->addStretch();
    auto* footnote = new QHBoxLayout;
    footnote->addWidget(symbol(content.footnoteSymbol, 14), 0, Qt::AlignTop);
    footnote->addWidget(label(content.footnote, wording_, font()), 1);
    column->addLayout(footnote);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(static_cast<int>(metrics.buttonSpacing));
    buttons->addStretch();
    for (const auto& item : content.buttons) {
        auto* button = new QPushButton(QString::fromStdString(wording_.apply(item.title)));
        button->setEnabled(item.isEnabled);
        const bool isDefault = item.role == OnboardingButtonRole::defaultAction;
        button->setDefault(isDefault);
        if (!isDefault) {
            button->setShortcut(QKeySequence(Qt::Key_Escape));
        }
        QObject::connect(button, &QPushButton::clicked, [this, isDefault] {
            isDefault ? view_->pressContinue() : view_->pressNotNow();
        });
        if (isDefault) {
            defaultButton_ = button;
        }
        buttons->addWidget(button);
    }
    column->addLayout(buttons);
    if (page_ != nullptr) {
        layout()->removeWidget(page_);
        page_->deleteLater();
    }
    page_ = page;
    layout()->addWidget(page_);
}

void QtWelcomeWindow::closeEvent(QCloseEvent* event) {
    // The controller closes the window itself, through the application object.
    event->ignore();
    onUserClose_();
}

}  // namespace orvane

#include "ui/qt/QtOverlayPanel.h"

#include <QPaintEvent>
#include <QPainter>

namespace orvane {

class QtOverlayPanel::Surface final : public QWidget {
  public:
    explicit Surface(QtOverlayPanel& panel)
        : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                               Qt::X11BypassWindowManagerHint | Qt::WindowDoesNotAcceptFocus),
          panel_(panel) {
        setAttribute(Qt::WA_ShowWithoutActivating);
        setAttribute(Qt::WA_X11DoNotAcceptFocus);
        setAttribute(Qt::WA_TranslucentBackground);
        setFocusPolicy(Qt::NoFocus);
        setWindowTitle(QStringLiteral("Orvane overlay"));
    }

    OverlayViewData data;
    bool opaque = true;

  protected:
    void paintEvent(QPaintEvent* event) override {
        QPainter painter(this);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(event->rect(), Qt::transparent);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        painter.setClipRegion(event->region());
        panel_.renderer_.paint(painter, data, opaque);
        if (panel_.onPainted) {
            panel_.onPainted();
        }
    }

  private:
    QtOverlayPanel& panel_;
};

QtOverlayPanel::QtOverlayPanel(Environment environment, QtOverlayRenderer renderer)
    : environment_(std::move(environment)),
      renderer_(std::move(renderer)),
      surface_(std::make_unique<Surface>(*this)) {
    // The native window, its fonts and the paint path are made now, so the first gesture pays for
    // none of them.
    surface_->winId();
    QImage warmUp(64, 64, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&warmUp);
    OverlayViewData sample{{64, 64}, {}};
    sample.elements.push_back(
        {OverlayPart::caption, {}, OverlayText{{{0, 0}, {64, 20}}, "Orvane", {}, {}, {}, {}}});
    renderer_.paint(painter, sample, false);
}

QtOverlayPanel::~QtOverlayPanel() {
    for (const auto& unsubscribe : unsubscribers_) {
        unsubscribe();
    }
}

QWidget& QtOverlayPanel::widget() {
    return *surface_;
}

void QtOverlayPanel::attach(std::shared_ptr<SwitcherOverlayViewModel> viewModel,
                            std::shared_ptr<const OverlayViewBuilder> builder) {
    viewModel_ = std::move(viewModel);
    builder_ = std::move(builder);
    auto follow = [this](auto& observable) {
        const auto token = observable.subscribe([this](const auto&) { rebuild(); });
        unsubscribers_.push_back([&observable, token] { observable.unsubscribe(token); });
    };
    follow(viewModel_->windows);
    follow(viewModel_->selectedIndex);
    follow(viewModel_->thumbnailsByWindowIdentifier);
    follow(viewModel_->layoutStyle);
    follow(viewModel_->cardSize);
    follow(viewModel_->thumbnailsEnabled);
    follow(viewModel_->columnCount);
    follow(viewModel_->launcherPresentation);
}

void QtOverlayPanel::rebuild() {
    if (!visible_ || !viewModel_ || !builder_) {
        return;
    }
    auto data = builder_->build(*viewModel_, size_);
    const auto changed = QtOverlayRenderer::changedRegion(surface_->data, data);
    surface_->data = std::move(data);
    if (!changed.isEmpty()) {
        surface_->update(changed);
    }
}

void QtOverlayPanel::setFrame(const Rect& frame, bool display) {
    const auto desktop = environment_.toDesktop ? environment_.toDesktop(frame) : frame;
    size_ = frame.size;
    surface_->setGeometry(static_cast<int>(std::lround(desktop.origin.x)),
                          static_cast<int>(std::lround(desktop.origin.y)),
                          static_cast<int>(std::ceil(desktop.size.width)),
                          static_cast<int>(std::ceil(desktop.size.height)));
    if (display && visible_) {
        rebuild();
    }
}

void QtOverlayPanel::orderFrontRegardless() {
    surface_->opaque = !(environment_.isComposited && environment_.isComposited());
    if (viewModel_ && builder_) {
        surface_->data = builder_->build(*viewModel_, size_);
    }
    visible_ = true;
    if (surface_->isVisible()) {
        surface_->update();
    } else {
        surface_->show();
    }
    surface_->raise();
}

void QtOverlayPanel::orderOut() {
    visible_ = false;
    surface_->hide();
}

}  // namespace orvane

// The preview window, see frmPreview.h.
#include "notices/frmPreview.h"

#include "controls/Twips.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <utility>

namespace pictorel {
namespace {

constexpr float kOverlap = 200; // twips by which the window covers the panels' left edge

struct PreviewSize {
    float windowWidth;
    float windowHeight;
    float viewWidth;
    float viewHeight;
};

constexpr PreviewSize kLandscape{4440, 3240, 4335, 3135};
constexpr PreviewSize kPortrait{3480, 4080, 3375, 3975};
constexpr PreviewSize kSquare{3855, 3855, 3735, 3735};

const PreviewSize& SizeFor(int width, int height) {
    if (width == height) {
        return kSquare;
    }
    return width > height ? kLandscape : kPortrait;
}

// The reduced copy stands for a larger picture: it fills the window from the first moment on, as the previews
// that follow do.
class PreviewView : public PictureView {
  public:
    using PictureView::PictureView;
    void FitNew() override { Fit(); }
};

// The place asked for, moved so that the window is whole on the screen.
QRect OnScreen(QRect place) {
    const QScreen* screen = QGuiApplication::screenAt(place.center());
    screen = screen != nullptr ? screen : QGuiApplication::primaryScreen();
    const QRect available = screen->availableGeometry();
    place.moveLeft(std::clamp(place.left(), available.left(),
                              std::max(available.left(), available.right() - place.width() + 1)));
    place.moveTop(std::clamp(place.top(), available.top(),
                             std::max(available.top(), available.bottom() - place.height() + 1)));
    return place;
}

} // namespace

frmPreview::frmPreview(QWidget& owner, std::function<PreviewPlacement()> placement)
    : owner_(owner), placement_(std::move(placement)) {}

frmPreview::~frmPreview() = default;

void frmPreview::Load() {
    const PreviewPlacement placement = placement_();
    const PreviewSize& size = SizeFor(placement.pictureWidth, placement.pictureHeight);
    window_.reset(new QWidget(&owner_, Qt::Tool | Qt::WindowTitleHint | Qt::CustomizeWindowHint |
                                           Qt::MSWindowsFixedSizeDialogHint | Qt::WindowDoesNotAcceptFocus));
    window_->setObjectName(QStringLiteral("frmPreview"));
    window_->setWindowTitle(QStringLiteral("Preview"));
    window_->setAttribute(Qt::WA_ShowWithoutActivating);
    view_ = new PreviewView(window_.get());
    view_->setObjectName(QStringLiteral("ImageView_Preview"));
    view_->SetHint(QString()); // an empty preview invites to nothing
    view_->SetBorderStyle(0);
    view_->SetBackgroundColour(placement.background);

    const int width = TwipsToPixels(size.windowWidth);
    const int height = TwipsToPixels(size.windowHeight);
    const QRect place =
        OnScreen({TwipsToPixels(static_cast<float>(placement.left) - size.windowWidth + kOverlap),
                  TwipsToPixels(static_cast<float>(placement.top)), width, height});
    window_->setFixedSize(width, height);
    window_->move(place.topLeft());
    const int viewWidth = TwipsToPixels(size.viewWidth);
    const int viewHeight = TwipsToPixels(size.viewHeight);
    view_->setGeometry((width - viewWidth) / 2, (height - viewHeight) / 2, viewWidth, viewHeight);
}

ImageView& frmPreview::View() {
    if (window_ == nullptr) {
        Load();
    }
    return *view_;
}

void frmPreview::ShowCopy(const PixelArray& reduced) {
    constexpr double kSlightlySmaller = 0.001;
    ImageView& view = View();
    view.SetRedraw(false);
    view.Show(reduced);
    view.FitNew();
    view.SetZoom(view.Zoom() - kSlightlySmaller);
    view.SetRedraw(true);
}

void frmPreview::ShowPreview(const PixelArray& preview) {
    ImageView& view = View();
    view.SetRedraw(false);
    view.Show(preview);
    view.SetRedraw(true);
    view.Fit();
}

void frmPreview::SetTitle(const QString& title) {
    View();
    window_->setWindowTitle(title);
}

void frmPreview::ShowModeless() {
    View();
    window_->show();
}

bool frmPreview::IsShown() const {
    return window_ != nullptr && window_->isVisible();
}

void frmPreview::RepaintNow() {
    if (IsShown()) {
        view_->repaint();
    }
}

void frmPreview::Unload() {
    view_ = nullptr;
    window_.reset();
}

} // namespace pictorel

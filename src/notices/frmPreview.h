// The floating window that shows the preview of an adjustment while its slider is held.
#pragma once

#include "panels/PreviewWindow.h"
#include "view/PictureView.h"

#include <QWidget>

#include <functional>
#include <memory>

namespace pictorel {

// What the window reads when it loads: where it goes, and the picture it is for.
struct PreviewPlacement {
    std::int32_t top = 0;  // twips on the screen
    std::int32_t left = 0; // twips on the screen: the left edge of the tool panels
    int pictureWidth = 0;
    int pictureHeight = 0;
    ColourValue background = 0;
};

class frmPreview : public PreviewWindow {
  public:
    frmPreview(QWidget& owner, std::function<PreviewPlacement()> placement);
    ~frmPreview() override;

    // The view inside, loading the window where it is not loaded.
    ImageView& View();

    void ShowCopy(const PixelArray& reduced) override;
    void ShowPreview(const PixelArray& preview) override;
    void SetTitle(const QString& title) override;
    void ShowModeless() override;
    bool IsShown() const override;
    void RepaintNow() override;
    void Unload() override;

  private:
    void Load();

    // A slider gives up while an event is handed from the main window to each of its children, of which the
    // preview window is one: it must not be gone when its turn comes.
    struct GoesLater {
        void operator()(QWidget* window) const {
            window->hide();
            window->deleteLater();
        }
    };

    QWidget& owner_;
    std::function<PreviewPlacement()> placement_;
    std::unique_ptr<QWidget, GoesLater> window_;
    PictureView* view_ = nullptr; // lives in window_
};

} // namespace pictorel

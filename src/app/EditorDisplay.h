// What the window shows of the editor: picture, sizes, history, previews, progress.
#pragma once

#include "app/Spoken.h"
#include "controls/Label.h"
#include "controls/ProgressBar.h"
#include "editor/Editor.h"
#include "panels/HistoryPanel.h"
#include "panels/LivePreview.h"
#include "panels/PreviewWindow.h"
#include "panels/ResizePanel.h"
#include "view/ImageView.h"
#include "view/ZoomScroll.h"

#include <QString>
#include <QWidget>

#include <utility>

namespace pictorel {

struct EditorDisplayParts {
    QWidget& window;
    QString applicationTitle;
    ImageView& view;
    ZoomScroll& zoomScroll;
    PreviewWindow& previewWindow;
    HistoryPanel& historyPanel;
    LivePreview& livePreview;
    ResizePanel& resizePanel;
    Label& lbl_ImageInfo;
    ProgressBar& progressBar;
    Announcer& announcer;
};

class EditorDisplay : public EditorObserver {
  public:
    EditorDisplay(Editor& editor, EditorDisplayParts parts) : editor_(editor), parts_(std::move(parts)) {}

    void PictureLoaded(PictureSlot slot) override;
    void PictureChanged(PictureSlot slot) override;
    void SizeChanged(PictureSlot slot) override;
    void HistoryChanged() override;
    void DocumentChanged() override;
    void PreviewLoaded() override;
    void PreviewChanged(const PixelArray& preview) override;
    void Progressed(int step) override;
    void PaintPending() override;
    ShownPart PartShown(PictureSlot slot) const override;

  private:
    void ShowSize(PictureSlot slot);

    Editor& editor_;
    EditorDisplayParts parts_;
};

} // namespace pictorel

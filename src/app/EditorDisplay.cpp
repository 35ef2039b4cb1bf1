// What the window shows of the editor, see EditorDisplay.h.
#include "app/EditorDisplay.h"

#include "platform/PumpEvents.h"

namespace pictorel {

void EditorDisplay::PictureLoaded(PictureSlot slot) {
    parts_.view.SetRedraw(false);
    parts_.view.Show(editor_.Document.WorkingPicture(slot));
    parts_.view.FitNew();
    parts_.view.SetRedraw(true);
    parts_.zoomScroll.UpdateZoomView(slot);
    ShowSize(slot);
}

void EditorDisplay::PictureChanged(PictureSlot slot) {
    parts_.view.SetRedraw(false);
    parts_.view.Show(editor_.Document.WorkingPicture(slot));
    parts_.view.SetRedraw(true);
    ShowSize(slot);
}

void EditorDisplay::SizeChanged(PictureSlot slot) {
    ShowSize(slot);
    parts_.resizePanel.PictureSizeChanged();
}

void EditorDisplay::ShowSize(PictureSlot slot) {
    const QString damage = DamageText(editor_.Document.WorkingPicture(slot).PartShown());
    const QString size = ImageInfoText(editor_.Document.ImageWidth(slot), editor_.Document.ImageHeight(slot));
    parts_.lbl_ImageInfo.SetCaption(damage.isEmpty() ? size : size + QStringLiteral("  ") + damage);
    parts_.lbl_ImageInfo.RepaintNow();
}

void EditorDisplay::HistoryChanged() {
    parts_.historyPanel.Show();
    parts_.livePreview.HistoryChanged();
    const History& states = editor_.History.States();
    if (states.Active() >= 0) {
        parts_.announcer.Say(QObject::tr("%1, state %2 of %3")
                                 .arg(states.State(states.Active()).caption)
                                 .arg(states.Active() + 1)
                                 .arg(states.Count()));
    }
}

// "photo.jpg - Pictorel", with the platform's mark while there are unsaved changes.
void EditorDisplay::DocumentChanged() {
    static const QString kMark = QStringLiteral("[*]"); // what Qt puts the platform's mark for
    QString name = editor_.Document.PictureName;
    name.replace(kMark, kMark + kMark); // in a name it means itself
    parts_.window.setWindowTitle(name.isEmpty()
                                     ? parts_.applicationTitle
                                     : name + kMark + QStringLiteral(" - ") + parts_.applicationTitle);
    parts_.window.setWindowModified(!name.isEmpty() && editor_.Document.ImageModified(kSlot));
}

void EditorDisplay::PreviewLoaded() {
    parts_.previewWindow.ShowCopy(editor_.Document.PreviewPixels);
}

void EditorDisplay::PreviewChanged(const PixelArray& preview) {
    parts_.previewWindow.ShowPreview(preview);
}

void EditorDisplay::Progressed(int step) {
    parts_.progressBar.setValue(step);
    parts_.progressBar.RepaintNow();
}

void EditorDisplay::PaintPending() {
    PaintPendingEvents();
}

ShownPart EditorDisplay::PartShown(PictureSlot /*slot*/) const {
    return parts_.view.PartShown();
}

} // namespace pictorel

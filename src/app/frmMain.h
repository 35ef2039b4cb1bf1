// The main window: it owns the controls and the objects that handle them, and wires them together.
#pragma once

#include "app/ApplicationStrings.h"
#include "app/Layout.h"
#include "app/PictureDrop.h"
#include "app/Shortcuts.h"
#include "app/ShutDown.h"
#include "commands/FileCommands.h"
#include "commands/print/PrintCommand.h"
#include "commands/scan/ImageTwain.h"
#include "commands/scan/ScanCommand.h"
#include "controls/CommonDialog.h"
#include "controls/ControlArray.h"
#include "controls/Events.h"
#include "controls/IconStore.h"
#include "controls/MessageBoxes.h"
#include "controls/PopupControl.h"
#include "controls/SkinFramework.h"
#include "editor/EditHistory.h"
#include "editor/EditorServices.h"
#include "editor/ImageConvert.h"
#include "editor/Image_Mods.h"
#include "editor/OperationDispatcher.h"
#include "editor/PictureFiles.h"
#include "editor/ReducedCopy.h"
#include "notices/PlaySound.h"
#include "notices/Popup_Mod.h"
#include "notices/UpdateCheck.h"
#include "notices/WebSite.h"
#include "notices/frmPreview.h"
#include "panels/LivePreview.h"
#include "panels/ResizePanel.h"
#include "panels/RotateFlip.h"
#include "panels/ToolPanels.h"
#include "view/ZoomScroll.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <memory>

namespace pictorel {

class frmMain : public QWidget, private EditorServices {
    Q_OBJECT

  public:
    frmMain();
    ~frmMain() override;

    const ControlRegistry& Controls() const { return controls_; }
    Image_Mods& Document() { return document_; }
    ShutDown& End() { return *shutDown_; }

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    friend class StartUp; // the load handler of this window, in a file of its own

    void MakeImagingObjects();
    void MakeCapabilities();
    void ArrangeControls();
    void RunLayout();
    bool IsReadyToOpen() const; // what Open asks of the window, for a file that is dropped

    void SetEditingEnabled(bool enabled) override { toolPanels_->SetEditingEnabled(enabled); }
    void ResetSliderGroup(int group) override { toolPanels_->ResetSliderGroup(group); }
    void ResetResizePanel() override { resizePanel_->RadioButton_Resize_Click(0); }
    void CheckOriginalSize() override;
    void UpdatePreviewImage(PictureSlot slot) override { reducedCopy_->UpdatePreviewImage(slot); }
    void UpdateZoomView(PictureSlot slot) override { zoomScroll_->UpdateZoomView(slot); }
    void SetCommandsEnabled(bool enabled) override;
    void RepaintWindow() override { repaint(); }
    void EndAttention() override;
    void ShowAbout() override;
    void ShowTools() override;
    void ShowUpdates(); // until the person has answered

    PushButton& UndoButton() const { return controls_.Array<PushButton>("Cmd_Panel")(2); }
    PushButton& RedoButton() const { return controls_.Array<PushButton>("Cmd_Panel")(3); }
    ReportList& HistoryList() const { return controls_.Single<ReportList>("HistoryList"); }

    // Made first and gone last: everything below refers to these.
    ApplicationStrings strings_;
    Image_Mods document_;
    ControlRegistry controls_;
    IconStore icons_;
    SkinFramework SkinFramework_;
    MessageBoxes messages_{this};
    CommonDialog CDialog_Open_{this};
    PopupControl PopupControl_Splash_{this, QStringLiteral("PopupControl_Splash")};
    PopupControl PopupControl_Tag_{this, QStringLiteral("PopupControl_Tag")};
    PopupControl PopupControl_{this, QStringLiteral("PopupControl")}; // no notice of ours uses it
    QTimer Timer_StartUp_;
    QTimer Timer_Blink_;
    QTimer Timer_Tags_;
    QTimer Timer_Scanner_;
    bool UpdateAvailable_ = false; // a newer version is published
    bool DownloadChosen_ = false;  // the person chose "Update Now" in the update notice
    PlaySound sounds_;

    std::unique_ptr<ImageTransform> imageTransform_;
    std::unique_ptr<ImageConvert> imageConvert_;
    std::unique_ptr<ImagePaint> imagePaint_;
    std::unique_ptr<ImageTwain> imageTwain_;
    std::unique_ptr<frmPreview> preview_;
    std::unique_ptr<PictureFiles> files_;
    std::unique_ptr<EditHistory> history_;
    std::unique_ptr<HistoryPanel> historyPanel_;
    std::unique_ptr<OperationDispatcher> dispatcher_;
    std::unique_ptr<ReducedCopy> reducedCopy_;
    std::unique_ptr<LivePreview> livePreview_;
    std::unique_ptr<ToolPanels> toolPanels_;
    std::unique_ptr<RotateFlip> rotateFlip_;
    std::unique_ptr<ZoomScroll> zoomScroll_;
    std::unique_ptr<Layout> layout_;
    std::unique_ptr<ResizePanel> resizePanel_;
    std::unique_ptr<FileCommands> fileCommands_;
    std::unique_ptr<PictureDrop> pictureDrop_;
    std::unique_ptr<PrintCommand> printCommand_;
    std::unique_ptr<ScanCommand> scanCommand_;
    std::unique_ptr<Popup_Mod> popups_;
    std::unique_ptr<ShareButtons> shareButtons_;
    std::unique_ptr<Shortcuts> shortcuts_;
    std::unique_ptr<UpdateCheck> updateCheck_;
    std::unique_ptr<ShutDown> shutDown_;
    QPointer<QWidget> focusBefore_; // while the commands are off
    Events events_;
};

} // namespace pictorel

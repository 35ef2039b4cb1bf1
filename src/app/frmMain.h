// The main window: it owns the editor, the controls and the objects that handle them, and wires them
// together.
#pragma once

#include "app/ApplicationStrings.h"
#include "app/EditorDisplay.h"
#include "app/Layout.h"
#include "app/MainControls.h"
#include "app/PictureDrop.h"
#include "app/Shortcuts.h"
#include "app/ShutDown.h"
#include "app/Spoken.h"
#include "app/StartUp.h"
#include "commands/FileCommands.h"
#include "commands/PictureClipboard.h"
#include "commands/RecoverCommand.h"
#include "commands/print/PrintCommand.h"
#include "commands/scan/ImageTwain.h"
#include "commands/scan/ScanCommand.h"
#include "controls/CommonDialog.h"
#include "controls/Events.h"
#include "controls/IconStore.h"
#include "controls/MessageBoxes.h"
#include "controls/PopupControl.h"
#include "controls/SkinFramework.h"
#include "editor/Editor.h"
#include "notices/PlaySound.h"
#include "notices/Popup_Mod.h"
#include "notices/UpdateCheck.h"
#include "notices/WebSite.h"
#include "notices/frmPreview.h"
#include "panels/HistoryPanel.h"
#include "panels/LivePreview.h"
#include "panels/PictureControls.h"
#include "panels/ResizePanel.h"
#include "panels/RotateFlip.h"
#include "panels/ToolPanels.h"
#include "view/ZoomScroll.h"

#include <QPointer>
#include <QWidget>

#include <memory>

namespace pictorel {

class frmMain : public QWidget {
    Q_OBJECT

  public:
    frmMain();
    ~frmMain() override;

    const MainControls& Controls() const { return controls_; }
    Editor& EditorOfWindow() { return editor_; }
    Image_Mods& Document() { return editor_.Document; }
    ShutDown& End() { return *shutDown_; }
    StartUp& Start() { return *startUp_; }

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    void MakePanels();
    void MakeView();
    void MakeResizePanel();
    void MakeCommands();
    void MakeDisplay();
    void MakeShell();
    void BindKeys();

    void RequestLayout();
    void RunLayout();
    bool IsReadyToOpen() const; // what Open asks of the window, for a file that is dropped

    void ResetPanels();
    void SetCommandsEnabled(bool enabled);
    void EndAttention();
    void ShowAbout();
    void ShowTools();
    bool ShowUpdates(); // until the person has answered

    // Made first and gone last: everything below refers to these.
    ScreenReaders screenReaders_;
    ApplicationStrings strings_;
    MessageBoxes messages_{this};
    Editor editor_;
    MainControls controls_;
    IconStore icons_;
    SkinFramework skin_;
    CommonDialog CDialog_Open_{this};
    PopupControl PopupControl_Splash_{this, QStringLiteral("PopupControl_Splash")};
    PopupControl PopupControl_Tag_{this, QStringLiteral("PopupControl_Tag")};
    PopupControl PopupControl_{this, QStringLiteral("PopupControl")}; // no notice of ours uses it
    MainTimers timers_;
    PlaySound sounds_;

    std::unique_ptr<ImagePaint> imagePaint_;
    std::unique_ptr<ImageTwain> imageTwain_;
    Announcer announcer_{*this};
    std::unique_ptr<frmPreview> preview_;
    std::unique_ptr<PictureControls> pictureControls_;
    std::unique_ptr<HistoryPanel> historyPanel_;
    std::unique_ptr<LivePreview> livePreview_;
    std::unique_ptr<ToolPanels> toolPanels_;
    std::unique_ptr<RotateFlip> rotateFlip_;
    std::unique_ptr<ZoomScroll> zoomScroll_;
    std::unique_ptr<Layout> layout_;
    std::unique_ptr<ResizePanel> resizePanel_;
    std::unique_ptr<EditorDisplay> display_;
    std::unique_ptr<FileCommands> fileCommands_;
    std::unique_ptr<RecoverCommand> recoverCommand_;
    std::unique_ptr<PictureDrop> pictureDrop_;
    std::unique_ptr<PictureClipboard> clipboard_;
    std::unique_ptr<PrintCommand> printCommand_;
    std::unique_ptr<ScanCommand> scanCommand_;
    std::unique_ptr<Popup_Mod> popups_;
    std::unique_ptr<ShareButtons> shareButtons_;
    std::unique_ptr<Shortcuts> shortcuts_;
    std::unique_ptr<UpdateCheck> updateCheck_;
    std::unique_ptr<ShutDown> shutDown_;
    std::unique_ptr<StartUp> startUp_;
    QPointer<QWidget> focusBefore_; // while the commands are off
    bool layoutRequested_ = false;
};

} // namespace pictorel

// The main window, see frmMain.h.
#include "app/frmMain.h"

#include "app/ControlFactory.h"
#include "app/PictureDependent.h"
#include "commands/print/PicturePrinter.h"
#include "commands/scan/ScannerProcess.h"
#include "editor/decoding/DecoderProcess.h"
#include "notices/frmAbout.h"
#include "notices/frmTools.h"
#include "notices/frmUpdates.h"
#include "panels/IconTable.h"
#include "picture/metafile/Metafile.h"
#include "platform/Folders.h"

#include <QApplication>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QFile>

namespace pictorel {
namespace {

constexpr int kSplitVersion = 2; // "major.minor" of "major.minor.revision"

QString InPictures(const char* fileName) {
    return ApplicationFolder() + PlatformPath(QStringLiteral("\\pics\\")) + QString::fromLatin1(fileName);
}

QString ShortVersion() {
    return QCoreApplication::applicationVersion().section(u'.', 0, kSplitVersion - 1);
}

} // namespace

frmMain::frmMain()
    : editor_(
          messages_, codecs::CodecTable(metafile::MetafileCodecs()),
          std::make_shared<DecoderProcess>(HelperProgram(QStringLiteral("pictorel_decoder")).toStdString())),
      controls_{CreateControls(*this)} {
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(QStringLiteral("Pictorel"));
    resize(TwipsToPixels(15570), TwipsToPixels(12570));
    controls_.Cmd_Tab(kLockButton).SetOn(true); // before anybody asks what kind of button it is
    controls_.ImageView(kSlot).SharePyramids(editor_.Document.Pyramids);
    controls_.ImageView(kSlot).SetHint(tr("Open a picture or drop one here"));
    editor_.Document.BackgroundColour = controls_.ImageView(kSlot).BackgroundColour();
    MakePanels();
    MakeView();
    MakeResizePanel();
    MakeDisplay();
    MakeCommands();
    MakeShell();
}

frmMain::~frmMain() {
    editor_.SetObserver(nullptr);
}

void frmMain::MakePanels() {
    const MainControls& c = controls_;
    preview_ = std::make_unique<frmPreview>(*this, [this] {
        return PreviewPlacement{livePreview_->PreviewWindowTop, livePreview_->PreviewWindowLeft,
                                editor_.Document.ImageWidth(kSlot), editor_.Document.ImageHeight(kSlot),
                                editor_.Document.BackgroundColour};
    });
    pictureControls_ = std::make_unique<PictureControls>(PictureDependentControls(c));
    historyPanel_ = std::make_unique<HistoryPanel>(
        editor_, HistoryPanelControls{c.HistoryList, c.Cmd_Panel(kUndoButton), c.Cmd_Panel(kRedoButton)},
        *pictureControls_);
    livePreview_ =
        std::make_unique<LivePreview>(editor_,
                                      LivePreviewControls{c.Slider_Tab, c.lbl_SliderTab, c.lbl_SliderName,
                                                          c.TabControl_Effects, c.ProgressBarControl},
                                      *pictureControls_, *historyPanel_, *preview_);
    livePreview_->Announce = [this](const QString& text) { announcer_.Say(text); };
    livePreview_->WindowPosition = [this] {
        const QPoint corner = frameGeometry().topLeft();
        return std::pair{PixelsToTwips(corner.x()), PixelsToTwips(corner.y())};
    };
    toolPanels_ = std::make_unique<ToolPanels>(
        editor_, ToolPanelControls{c.Cmd_Tab, c.Cmd_Reset, c.Cmd_ResetEffects, c.Slider_Tab, c.lbl_SliderTab},
        *historyPanel_, *livePreview_);
    rotateFlip_ =
        std::make_unique<RotateFlip>(editor_,
                                     RotateFlipControls{c.Cmd_RotateLeft(kSlot), c.Cmd_RotateRight(kSlot),
                                                        c.Cmd_FlipV(kSlot), c.Cmd_FlipH(kSlot)},
                                     *historyPanel_, [this] { zoomScroll_->Cmd_ZoomFit_Click(kSlot); });
}

void frmMain::MakeView() {
    const MainControls& c = controls_;
    PictureViewControl& view = c.ImageView(kSlot);
    zoomScroll_ = std::make_unique<ZoomScroll>(
        editor_, view,
        ZoomScrollControls{c.Cmd_ZoomIn, c.Cmd_ZoomOut, c.Cmd_ZoomFit, c.Cmd_ActualSize, c.Slider_ImageZoom,
                           c.lbl_ZoomPercent, c.ScrollBar_ImageX, c.ScrollBar_ImageY});
    view.SetViewChangedHandler(Events::Guarded([this] { zoomScroll_->ImageView_Changed(kSlot); }));
    layout_ = std::make_unique<Layout>(
        editor_.Document,
        LayoutControls{c.Resizer_Main, c.TabControl_Effects, c.HistoryList, c.Resizer_Adjustments,
                       c.Resizer_Filters, c.Resizer_Effects, c.Resizer_Resize, c.ScrollBar_ImageX,
                       c.ScrollBar_ImageY, c.ImageView, c.ProgressBarControl, c.GroupBox_Canves1,
                       c.GroupBox_Canves2, c.lbl_ImageInfo(kSlot), c.Cmd_Recommend},
        *zoomScroll_);
}

void frmMain::MakeResizePanel() {
    const MainControls& c = controls_;
    resizePanel_ = std::make_unique<ResizePanel>(
        editor_,
        ResizePanelControls{c.RadioButton_Resize, c.Combo_ResizePredefined, c.Txt_ImageWidth,
                            c.Txt_ImageHeight, c.Txt_ResizePercent, c.UpDown_ImageWidth, c.UpDown_ImageHeight,
                            c.UpDown_ResizePercent, c.Cmd_Tab(kApplyButton), c.Cmd_Tab(kLockButton),
                            c.lbl_Resize},
        *historyPanel_, icons_, messages_, [this] { layout_->RefitPicture(); });
    pictureControls_->SetFollower([this] { resizePanel_->SettleButtons(); });
}

void frmMain::MakeDisplay() {
    display_ = std::make_unique<EditorDisplay>(
        editor_,
        EditorDisplayParts{*this, strings_.Entry(Text::Title), controls_.ImageView(kSlot), *zoomScroll_,
                           *preview_, *historyPanel_, *livePreview_, *resizePanel_,
                           controls_.lbl_ImageInfo(kSlot), controls_.ProgressBarControl, announcer_});
    editor_.SetObserver(display_.get());
}

void frmMain::MakeCommands() {
    const MainControls& c = controls_;
    imageTwain_ = std::make_unique<ScannerProcess>(HelperProgram(QStringLiteral("pictorel_scanner")));
    imagePaint_ = std::make_unique<PicturePrinter>(this, [this] { return editor_.Document.PictureName; });
    fileCommands_ = std::make_unique<FileCommands>(
        editor_, FileCommandControls{c.Cmd_Panel, CDialog_Open_},
        FileCommandServices{[this] { EndAttention(); }, [this] { ResetPanels(); },
                            [this] { pictureControls_->SetEditingEnabled(true); },
                            [this] { historyPanel_->UpdateUndoRedoButtons(); }, [this] { ShowTools(); },
                            [this] { ShowAbout(); }, strings_.Entry(Text::Title)},
        messages_);
    recoverCommand_ = std::make_unique<RecoverCommand>(
        editor_, *fileCommands_, [this](const QString& text, const QString& title, const QImage& picture) {
            return messages_.AskAboutPicture(text, title, picture);
        });
    scanCommand_ = std::make_unique<ScanCommand>(
        editor_, *fileCommands_, *imageTwain_,
        ScanCommandControls{c.Cmd_Panel(kScanButton), timers_.Timer_Scanner, c.ProgressBarControl},
        ScanCommandServices{[this](bool on) { SetCommandsEnabled(on); }, [this] { EndAttention(); }},
        messages_);
    printCommand_ =
        std::make_unique<PrintCommand>(editor_, *imagePaint_, c.Cmd_Panel(kPrintButton), messages_);
}

void frmMain::MakeShell() {
    popups_ = std::make_unique<Popup_Mod>(timers_.Timer_Blink);
    shareButtons_ = std::make_unique<ShareButtons>(controls_.Cmd_Recommend, strings_);
    updateCheck_ = std::make_unique<UpdateCheck>(strings_, ShortVersion());
    shutDown_ = std::make_unique<ShutDown>(
        *this, ShutDownParts{editor_, *fileCommands_, *scanCommand_, *imageTwain_, *preview_,
                             controls_.WebBrowser1, *popups_, PopupControl_Splash_});
    BindKeys();
    pictureDrop_ = std::make_unique<PictureDrop>(
        *this, editor_, [this] { return IsReadyToOpen(); },
        [this](const PictureArrival& arrival) { fileCommands_->OpenArrival(arrival); });
    startUp_ = std::make_unique<StartUp>(
        StartUpParts{*this,
                     controls_,
                     timers_,
                     strings_,
                     icons_,
                     skin_,
                     PopupControl_Splash_,
                     PopupControl_Tag_,
                     editor_,
                     *updateCheck_,
                     *popups_,
                     *pictureControls_,
                     *historyPanel_,
                     *toolPanels_,
                     *resizePanel_,
                     *zoomScroll_,
                     *preview_,
                     [this] { return ShowUpdates(); },
                     [this] { recoverCommand_->OfferAll(); },
                     [this](const QStringList& files) { pictureDrop_->Open(FirstOf(files)); }});
}

void frmMain::BindKeys() {
    shortcuts_ = std::make_unique<Shortcuts>(*this, controls_);
    clipboard_ = std::make_unique<PictureClipboard>(editor_, *fileCommands_, messages_);
    shortcuts_->On(*this, QKeySequence(Qt::CTRL | Qt::Key_PageDown),
                   [this] { controls_.TabControl_Effects.StepTab(1); });
    shortcuts_->On(*this, QKeySequence(Qt::CTRL | Qt::Key_PageUp),
                   [this] { controls_.TabControl_Effects.StepTab(-1); });
    shortcuts_->On(*this, QKeySequence::Copy, [this] {
        if (controls_.Cmd_Panel(kSaveButton).isEnabled()) {
            clipboard_->Copy();
        }
    });
    shortcuts_->On(*this, QKeySequence::Paste, [this] {
        if (IsReadyToOpen()) {
            clipboard_->Paste();
        }
    });
}

bool frmMain::IsReadyToOpen() const {
    return isEnabled() && QApplication::activeModalWidget() == nullptr &&
           controls_.Cmd_Panel(kOpenButton).isEnabled() &&
           (editor_.IsBusy() || !controls_.ProgressBarControl.isVisible()); // a scan shows progress too
}

void frmMain::ResetPanels() {
    resizePanel_->ResetToOriginalSize();
    for (const int group : kSliderGroups) {
        toolPanels_->ResetSliderGroup(group);
    }
}

// The container of all controls goes off and on, so that each keeps its own state.
void frmMain::SetCommandsEnabled(bool enabled) {
    ContainerPanel& container = controls_.Resizer_Main;
    if (enabled == container.IsEnabled()) {
        return;
    }
    if (enabled) {
        container.SetEnabled(true);
        unsetCursor();
        if (focusBefore_ != nullptr) {
            focusBefore_->setFocus();
        }
        return;
    }
    focusBefore_ = focusWidget();
    container.SetEnabled(false);
    setCursor(Qt::BusyCursor);
}

void frmMain::EndAttention() {
    if (popups_->IsBlinking()) {
        popups_->BlinkButton(controls_.Cmd_Panel(kOpenButton), false, timers_.Timer_Blink.interval());
    }
    PopupControl_Tag_.Close();
}

void frmMain::ShowAbout() {
    frmAbout(this, strings_, ShortVersion(), InPictures("")).exec();
}

void frmMain::ShowTools() {
    frmTools(this, strings_).exec();
}

bool frmMain::ShowUpdates() {
    QFile sound(InPictures("notice.wav"));
    const QByteArray bytes = sound.open(QIODevice::ReadOnly) ? sound.readAll() : QByteArray();
    frmUpdates notice(this, strings_, updateCheck_->UpdateNotes, icons_.Icon(kUpdateIcon), bytes, sounds_);
    notice.exec();
    return notice.DownloadChosen();
}

// One layout for all that an event loop's turn brings, and none in the midst of a command.
void frmMain::RequestLayout() {
    if (!layoutRequested_) {
        layoutRequested_ = true;
        QTimer::singleShot(0, this, [this] {
            layoutRequested_ = false;
            RunLayout();
        });
    }
}

void frmMain::RunLayout() {
    if (isMinimized() || !layout_) {
        return;
    }
    if (editor_.IsBusy()) {
        RequestLayout();
        return;
    }
    layout_->Form_Resize(frameGeometry().size());
}

void frmMain::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    RunLayout();
}

void frmMain::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange && isVisible()) {
        RequestLayout(); // restoring a minimised window runs the whole layout
    }
}

void frmMain::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    RequestLayout(); // the window manager gives the frame after the window is mapped
}

void frmMain::closeEvent(QCloseEvent* event) {
    shutDown_->Form_Close(*event);
}

} // namespace pictorel

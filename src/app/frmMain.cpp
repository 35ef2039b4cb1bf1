// The main window, see frmMain.h.
#include "app/frmMain.h"

#include "app/ControlFactory.h"
#include "app/EditingControls.h"
#include "app/IconTable.h"
#include "commands/print/PicturePrinter.h"
#include "commands/scan/ScannerProcess.h"
#include "controls/ComboBox.h"
#include "controls/RadioButton.h"
#include "controls/UpDown.h"
#include "controls/WebBrowser.h"
#include "editor/FileConverter.h"
#include "editor/PictureFileCodec.h"
#include "editor/SliderCatalogue.h"
#include "editor/WorkingPicture.h"
#include "notices/frmAbout.h"
#include "notices/frmTools.h"
#include "notices/frmUpdates.h"
#include "picture/metafile/Metafile.h"
#include "platform/CarryOn.h"
#include "view/PictureViewControl.h"

#include <QApplication>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QFile>

namespace pictorel {
namespace {

constexpr PictureSlot kSlot = 0;
constexpr int kScanButton = 5;

constexpr int kSplitVersion = 2; // "major.minor" of "major.minor.revision"

QString InPictures(const char* fileName) {
    return ApplicationFolder() + PlatformPath(QStringLiteral("\\pics\\")) + QString::fromLatin1(fileName);
}

QString ShortVersion() {
    return QCoreApplication::applicationVersion().section(u'.', 0, kSplitVersion - 1);
}

} // namespace

frmMain::frmMain() {
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(QStringLiteral("Pictorel"));
    CreateControls(*this, controls_);
    resize(TwipsToPixels(15570), TwipsToPixels(12570));
    ArrangeControls();
    MakeImagingObjects();
    MakeCapabilities();
}

frmMain::~frmMain() = default;

void frmMain::ArrangeControls() {
    const auto catalogue = SliderCatalogue();
    const auto sliders = controls_.Array<Slider>("Slider_Tab");
    const auto values = controls_.Array<Label>("lbl_SliderTab");
    for (int i = 0; i < kSliderCount; ++i) {
        const SliderRow& row = catalogue[static_cast<std::size_t>(i)];
        sliders(i).SetRange(row.minimum, row.maximum);
        sliders(i).SetNeutral(row.defaultValue);
        sliders(i).setAccessibleName(
            QString::fromUtf8(row.caption.data(), static_cast<qsizetype>(row.caption.size())));
        values(i).setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    }
    for (Label* const label : controls_.Array<Label>("lbl_SliderNameRightSide")) {
        label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    }
    auto& tabs = controls_.Single<TabControl>("TabControl_Effects");
    struct TabRow {
        const char* caption;
        const char* panel;
    };
    for (const TabRow& tab :
         {TabRow{"Adjustments", "Resizer_Adjustments"}, TabRow{"Filters", "Resizer_Filters"},
          TabRow{"Effects", "Resizer_Effects"}, TabRow{"Resize", "Resizer_Resize"}}) {
        auto& panel = controls_.Single<ContainerPanel>(tab.panel);
        panel.SetScrolling(true);
        tabs.AddTab(QString::fromLatin1(tab.caption), panel);
    }
    auto& zoom = controls_.Array<Slider>("Slider_ImageZoom")(0);
    zoom.SetRange(1, 1000);
    zoom.SetValue(100);
    for (const char* const name : {"ScrollBar_ImageX", "ScrollBar_ImageY"}) {
        auto& bar = controls_.Array<ScrollBar>(name)(0);
        bar.setRange(-500, 500);
        bar.setSingleStep(1);
        bar.setPageStep(100);
        bar.setValue(0);
    }
    controls_.Single<ProgressBar>("ProgressBar").setRange(0, 8);
    struct FieldRow {
        const char* spinner;
        const char* box;
        int maximum;
        int initial;
    };
    for (const FieldRow& field : {FieldRow{"UpDown_ImageWidth", "Txt_ImageWidth", 5000, 0},
                                  FieldRow{"UpDown_ImageHeight", "Txt_ImageHeight", 5000, 0},
                                  FieldRow{"UpDown_ResizePercent", "Txt_ResizePercent", 500, 100}}) {
        auto& spinner = controls_.Single<UpDown>(field.spinner);
        spinner.SetRange(0, field.maximum);
        spinner.SetValue(field.initial);
        spinner.SetRange(1, field.maximum);
        spinner.SetBuddy(controls_.Single<EditField>(field.box));
    }
}

void frmMain::MakeImagingObjects() {
    auto& view = controls_.Array<PictureViewControl>("ImageView")(0);
    auto memory = std::make_shared<WorkingFileMemory>();
    const auto isWorkingFile = [this](const std::string& fileName) {
        const std::string folder = document_.GetTempFolder().toStdString();
        return !folder.empty() && fileName.starts_with(folder);
    };
    document_.ImageUtility = std::make_unique<PictureMeasure>();
    const codecs::CodecTable formats(metafile::MetafileCodecs());
    document_.ImageCodec = std::make_unique<PictureFileCodec>(isWorkingFile, memory, formats);
    auto pyramids = std::make_shared<SharedPyramids>();
    view.SharePyramids(pyramids);
    imageConvert_ = std::make_unique<FileConverter>(*document_.ImageCodec, memory, pyramids);
    imageTransform_ = std::make_unique<WorkingPicture>();
    imageTwain_ = std::make_unique<ScannerProcess>(ApplicationFolder() + QStringLiteral("/pictorel_scanner"));
    imagePaint_ = std::make_unique<PicturePrinter>(this, [this] { return document_.PictureName; });
    document_.Transforms.Set(kSlot, *imageTransform_);
    document_.Views.Set(kSlot, view);
    imageTransform_->SetBackgroundColour(document_.Views(kSlot).BackgroundColour());
}

void frmMain::MakeCapabilities() {
    EditorServices& services = *this;
    const auto panel = controls_.Array<PushButton>("Cmd_Panel");
    const auto info = controls_.Array<Label>("lbl_ImageInfo");
    const auto button = [this](const char* name, int index = 0) -> PushButton& {
        return controls_.Array<PushButton>(name)(index);
    };
    const auto page = [this](const char* name) -> ContainerPanel& {
        return controls_.Single<ContainerPanel>(name);
    };

    preview_ = std::make_unique<frmPreview>(*this, [this] {
        return PreviewPlacement{livePreview_->PreviewWindowTop, livePreview_->PreviewWindowLeft,
                                document_.ImageWidth(kSlot), document_.ImageHeight(kSlot),
                                document_.Views(kSlot).BackgroundColour()};
    });
    files_ = std::make_unique<PictureFiles>(document_, PictureFilesControls{info}, services, messages_,
                                            strings_.Entry(Text::Title));
    history_ = std::make_unique<EditHistory>(document_, *files_, services);
    historyPanel_ = std::make_unique<HistoryPanel>(
        *history_, HistoryPanelControls{HistoryList(), UndoButton(), RedoButton()}, services);
    dispatcher_ =
        std::make_unique<OperationDispatcher>(document_, controls_.Single<ProgressBar>("ProgressBar"),
                                              [this]() -> ImageView& { return preview_->View(); });
    reducedCopy_ = std::make_unique<ReducedCopy>(document_, *files_, *imageConvert_);
    livePreview_ = std::make_unique<LivePreview>(
        document_,
        LivePreviewControls{
            controls_.Array<Slider>("Slider_Tab"), controls_.Array<Label>("lbl_SliderTab"),
            controls_.Array<Label>("lbl_SliderName"), controls_.Single<TabControl>("TabControl_Effects"),
            controls_.Single<ProgressBar>("ProgressBar"), HistoryList(), UndoButton(), RedoButton()},
        *dispatcher_, *reducedCopy_, *history_, services, *preview_);
    livePreview_->WindowPosition = [this] {
        const QPoint corner = frameGeometry().topLeft();
        return std::pair{PixelsToTwips(corner.x()), PixelsToTwips(corner.y())};
    };
    toolPanels_ = std::make_unique<ToolPanels>(
        ToolPanelControls{
            panel, controls_.Array<PushButton>("Cmd_Tab"), controls_.Array<PushButton>("Cmd_Reset"),
            controls_.Array<PushButton>("Cmd_ResetEffects"), controls_.Array<Slider>("Slider_Tab"),
            controls_.Array<Label>("lbl_SliderTab"), HistoryList(), PictureDependentControls(controls_)},
        *dispatcher_, *history_, *livePreview_);
    rotateFlip_ = std::make_unique<RotateFlip>(
        document_, *files_,
        RotateFlipControls{button("Cmd_RotateLeft"), button("Cmd_RotateRight"), button("Cmd_FlipV"),
                           button("Cmd_FlipH"), UndoButton(), RedoButton(), HistoryList(), info(0),
                           controls_.Array<Label>("lbl_Resize")(0)},
        *dispatcher_, *history_, services, *livePreview_);
    zoomScroll_ = std::make_unique<ZoomScroll>(
        document_,
        ZoomScrollControls{
            controls_.Array<PushButton>("Cmd_ZoomIn"), controls_.Array<PushButton>("Cmd_ZoomOut"),
            controls_.Array<PushButton>("Cmd_ZoomFit"), controls_.Array<PushButton>("Cmd_ActualSize"),
            controls_.Array<Slider>("Slider_ImageZoom"), controls_.Array<Label>("lbl_ZoomPercent"),
            controls_.Array<ScrollBar>("ScrollBar_ImageX"), controls_.Array<ScrollBar>("ScrollBar_ImageY")},
        PreviewCopy{[this] { UpdatePreviewImage(kSlot); },
                    [this](bool outdated) { livePreview_->PreviewOutdated = outdated; }});
    document_.Views(kSlot).SetViewChangedHandler(
        Events::Guarded([this] { zoomScroll_->ImageView_Changed(kSlot); }));
    layout_ = std::make_unique<Layout>(
        document_,
        LayoutControls{
            page("Resizer_Main"), controls_.Single<TabControl>("TabControl_Effects"), HistoryList(),
            page("Resizer_Adjustments"), page("Resizer_Filters"), page("Resizer_Effects"),
            page("Resizer_Resize"), controls_.Array<ScrollBar>("ScrollBar_ImageX"),
            controls_.Array<ScrollBar>("ScrollBar_ImageY"), controls_.Array<Control>("ImageView"),
            controls_.Single<ProgressBar>("ProgressBar"), controls_.Single<GroupBox>("GroupBox_Canves1"),
            controls_.Single<GroupBox>("GroupBox_Canves2"), info(0),
            controls_.Array<PushButton>("Cmd_Recommend")},
        *zoomScroll_);
    resizePanel_ = std::make_unique<ResizePanel>(
        document_, *files_,
        ResizePanelControls{
            controls_.Array<RadioButton>("RadioButton_Resize"),
            controls_.Single<ComboBox>("Combo_ResizePredefined"),
            controls_.Single<EditField>("Txt_ImageWidth"), controls_.Single<EditField>("Txt_ImageHeight"),
            controls_.Single<EditField>("Txt_ResizePercent"), controls_.Single<UpDown>("UpDown_ImageWidth"),
            controls_.Single<UpDown>("UpDown_ImageHeight"), controls_.Single<UpDown>("UpDown_ResizePercent"),
            button("Cmd_Tab", 3), button("Cmd_Tab", 4), controls_.Array<Label>("lbl_Resize"), info(0),
            UndoButton(), RedoButton(), HistoryList()},
        *dispatcher_, *history_, icons_, messages_, [this] { layout_->RefitPicture(); });
    fileCommands_ = std::make_unique<FileCommands>(document_, *files_, *history_,
                                                   FileCommandControls{panel, HistoryList(), CDialog_Open_},
                                                   services, messages_);
    scanCommand_ = std::make_unique<ScanCommand>(
        document_, *files_, *fileCommands_, *imageTwain_,
        ScanCommandControls{panel(kScanButton), Timer_Scanner_, controls_.Single<ProgressBar>("ProgressBar")},
        services, messages_);
    printCommand_ = std::make_unique<PrintCommand>(document_, *imagePaint_, panel(4), messages_);
    popups_ = std::make_unique<Popup_Mod>(Timer_Blink_);
    shareButtons_ = std::make_unique<ShareButtons>(controls_.Array<PushButton>("Cmd_Recommend"), strings_);
    updateCheck_ = std::make_unique<UpdateCheck>(strings_, ShortVersion());
    shutDown_ = std::make_unique<ShutDown>(
        *this, ShutDownParts{document_, *fileCommands_, *history_, HistoryList(), *scanCommand_, *imageTwain_,
                             *preview_, controls_.Single<WebBrowser>("WebBrowser1"), *popups_,
                             PopupControl_Splash_});
    shortcuts_ = std::make_unique<Shortcuts>(*this, controls_);
    pictureDrop_ = std::make_unique<PictureDrop>(
        *this, [this] { return IsReadyToOpen(); },
        [this](const QString& fileName) { fileCommands_->OpenFile(fileName); });
    controls_.Array<PictureViewControl>("ImageView")(0).SetHint(tr("Open a picture or drop one here"));
}

bool frmMain::IsReadyToOpen() const {
    return isEnabled() && QApplication::activeModalWidget() == nullptr &&
           controls_.Array<PushButton>("Cmd_Panel")(0).isEnabled() &&
           !controls_.Single<ProgressBar>("ProgressBar").isVisible();
}

void frmMain::CheckOriginalSize() {
    controls_.Array<RadioButton>("RadioButton_Resize")(0).setChecked(true);
}

// The container of all controls goes off and on, so that each keeps its own state.
void frmMain::SetCommandsEnabled(bool enabled) {
    auto& container = controls_.Single<ContainerPanel>("Resizer_Main");
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
        popups_->BlinkButton(controls_.Array<PushButton>("Cmd_Panel")(0), false, Timer_Blink_.interval());
    }
    PopupControl_Tag_.Close();
}

void frmMain::ShowAbout() {
    frmAbout(this, strings_, ShortVersion(), InPictures("")).exec();
}

void frmMain::ShowTools() {
    frmTools(this, strings_).exec();
}

void frmMain::ShowUpdates() {
    QFile sound(InPictures("notice.wav"));
    const QByteArray bytes = sound.open(QIODevice::ReadOnly) ? sound.readAll() : QByteArray();
    frmUpdates notice(this, strings_, updateCheck_->UpdateNotes, icons_.Icon(kUpdateIcon), bytes, sounds_);
    notice.exec();
    DownloadChosen_ = notice.DownloadChosen();
}

void frmMain::RunLayout() {
    if (!isMinimized()) {
        layout_->Form_Resize(frameGeometry().size());
    }
}

void frmMain::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (layout_) {
        RunLayout();
    }
}

void frmMain::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange && layout_ && isVisible()) {
        RunLayout(); // restoring a minimised window runs the whole layout
    }
}

void frmMain::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    // The window manager gives the frame after the window is mapped; only then is the outer size known.
    QTimer::singleShot(0, this, [this] { RunLayout(); });
}

void frmMain::closeEvent(QCloseEvent* event) {
    shutDown_->Form_Close(*event);
}

} // namespace pictorel

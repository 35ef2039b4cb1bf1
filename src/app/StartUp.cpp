// The start-up sequence, see StartUp.h.
#include "app/StartUp.h"

#include "app/KeyboardWalk.h"
#include "controls/MessageBoxes.h"
#include "editor/PredefinedSizes.h"
#include "editor/SliderCatalogue.h"
#include "notices/WebSite.h"
#include "panels/IconTable.h"
#include "platform/CarryOn.h"
#include "platform/Folders.h"
#include "platform/PumpEvents.h"
#include "platform/Texts.h"

#include <QApplication>
#include <QEventLoop>
#include <QFile>

#include <array>

namespace pictorel {
namespace {

constexpr int kBlinkInterval = 500; // milliseconds

using Buttons = ControlArray<PushButton> MainControls::*;

constexpr std::array<Buttons, 10> kFlatButtons{&MainControls::Cmd_Panel,      &MainControls::Cmd_Recommend,
                                               &MainControls::Cmd_ZoomIn,     &MainControls::Cmd_ZoomOut,
                                               &MainControls::Cmd_FlipV,      &MainControls::Cmd_FlipH,
                                               &MainControls::Cmd_RotateLeft, &MainControls::Cmd_RotateRight,
                                               &MainControls::Cmd_ZoomFit,    &MainControls::Cmd_ActualSize};

struct ToolTipRow {
    Buttons button;
    const char* text;
};

constexpr std::array kToolTips{
    ToolTipRow{&MainControls::Cmd_ZoomIn, "Zoom In"},
    ToolTipRow{&MainControls::Cmd_ZoomOut, "Zoom Out"},
    ToolTipRow{&MainControls::Cmd_FlipV, "Flip Vertical"},
    ToolTipRow{&MainControls::Cmd_FlipH, "Flip Horizontal"},
    ToolTipRow{&MainControls::Cmd_RotateLeft, "Rotate Left"},
    ToolTipRow{&MainControls::Cmd_RotateRight, "Rotate Right"},
    ToolTipRow{&MainControls::Cmd_ZoomFit, "Best Fit"},
    ToolTipRow{&MainControls::Cmd_ActualSize, "Actual Size"},
};

// A picture of the icon store on an element of a control array.
struct ButtonImage {
    Buttons array;
    int element;
    int icon;
};

constexpr std::array kButtonImages{
    ButtonImage{&MainControls::Cmd_Tab, kLockButton, kLockedIcon},
    ButtonImage{&MainControls::Cmd_Panel, kOpenButton, 4},
    ButtonImage{&MainControls::Cmd_Panel, kSaveButton, 8},
    ButtonImage{&MainControls::Cmd_Panel, kUndoButton, 5},
    ButtonImage{&MainControls::Cmd_Panel, kRedoButton, 6},
    ButtonImage{&MainControls::Cmd_Panel, kPrintButton, 7},
    ButtonImage{&MainControls::Cmd_Panel, kScanButton, 17},
    ButtonImage{&MainControls::Cmd_Panel, kToolsButton, 18},
    ButtonImage{&MainControls::Cmd_Panel, kAboutButton, 20},
    ButtonImage{&MainControls::Cmd_ZoomIn, 0, 9},
    ButtonImage{&MainControls::Cmd_ZoomOut, 0, 10},
    ButtonImage{&MainControls::Cmd_FlipV, 0, 11},
    ButtonImage{&MainControls::Cmd_FlipH, 0, 12},
    ButtonImage{&MainControls::Cmd_RotateLeft, 0, 13},
    ButtonImage{&MainControls::Cmd_RotateRight, 0, 14},
    ButtonImage{&MainControls::Cmd_ZoomFit, 0, 15},
    ButtonImage{&MainControls::Cmd_ActualSize, 0, 16},
    ButtonImage{&MainControls::Cmd_Recommend, 0, 26},
    ButtonImage{&MainControls::Cmd_Recommend, 1, 27},
};

QString InApplicationFolder(std::string_view path) {
    return ApplicationFolder() + PlatformPath(FromView(path));
}

// Empty where the file cannot be read.
QByteArray BytesOf(const QString& fileName) {
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

void ShowStartFailure(const std::exception& error) {
    MessageBoxes(nullptr).Show(QString::fromUtf8(error.what()), QStringLiteral("Error in loading..."),
                               MessageIcon::Exclamation);
}

StartResult StartUp::Form_Load(const CommandLine& commandLine) {
    try {
        if (commandLine.text == QStringLiteral("homepage")) {
            OpenWebLink(kHomePageLink, parts_.strings);
            return StartResult::HomePage;
        }
        filesToOpen_ = commandLine.files;
        RunSequence();
        return StartResult::Started;
    } catch (const std::exception& error) {
        ShowStartFailure(error);
        return StartResult::Failed;
    }
}

void StartUp::RunSequence() {
    LetAllEventsRun();
    parts_.window.setWindowTitle(parts_.strings.Entry(Text::Title));
    LetAllEventsRun();
    UpdateAvailable_ = parts_.updateCheck.CheckForUpdate(parts_.controls.WebBrowser1);
    parts_.zoomScroll.ZoomControlsSyncing = false;
    LoadSkin();
    LetAllEventsRun();
    if (filesToOpen_.isEmpty()) {
        ShowSplash();
    }
    LoadIcons();
    GiveButtonsTheirLooks();
    SetToolTips();
    NameControls(parts_.controls);
    SetTabOrder(parts_.controls);
    parts_.editor.Document.OpenDialogFolder = ChooseDialogFolder();
    parts_.editor.Document.SaveDialogFolder = ChooseDialogFolder();
    ConfigureControls();
    ResetPanels();
    for (const int index : {kScanButton, kToolsButton, kAboutButton}) {
        parts_.controls.Cmd_Panel(index).SetEnabled(true);
    }
    OpenButton().SetEnabled(false);
    SetTimers();
    events_.On(parts_.timers.Timer_StartUp, &QTimer::timeout, [this] { Timer_StartUp_Timer(); });
    events_.On(parts_.timers.Timer_Tags, &QTimer::timeout, [this] { Timer_Tags_Timer(); });
    parts_.timers.Timer_StartUp.start();
    parts_.window.showMaximized();
}

void StartUp::SetTimers() {
    struct TimerRow {
        QTimer& timer;
        const char* name;
        int interval; // milliseconds
        bool once;
    };
    for (const TimerRow& row : {TimerRow{parts_.timers.Timer_StartUp, "Timer_StartUp", 300, true},
                                TimerRow{parts_.timers.Timer_Blink, "Timer_Blink", kBlinkInterval, false},
                                TimerRow{parts_.timers.Timer_Tags, "Timer_Tags", 500, true},
                                TimerRow{parts_.timers.Timer_Scanner, "Timer_Scanner", 100, false}}) {
        row.timer.setObjectName(QString::fromLatin1(row.name));
        row.timer.setInterval(row.interval);
        row.timer.setSingleShot(row.once);
    }
}

void StartUp::LoadSkin() {
    SkinFramework& skin = parts_.skin;
    skin.LoadSkin(InApplicationFolder("\\Vista.cjstyles"), QStringLiteral("NormalBlack2.ini"));
    skin.ApplyWindow(parts_.window);
    skin.SetApplyOptions(skin.ApplyOptions() | SkinFramework::kAllWindows);
}

void StartUp::ShowSplash() {
    const QString splash = InApplicationFolder("\\pics\\splash.png");
    ShowSplashPopup(parts_.splash, parts_.window, {BytesOf(splash), BytesOf(DenseCompanion(splash))},
                    parts_.editor.Document.GetTempFolder());
    while (parts_.splash.CurrentState() != PopupControl::Closed) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

void StartUp::LoadIcons() {
    for (const IconRow& row : kIcons) {
        parts_.icons.Load(row.id, InApplicationFolder(row.file));
    }
}

void StartUp::GiveButtonsTheirLooks() {
    const MainControls& controls = parts_.controls;
    for (int i = 0; i < controls.Cmd_Icon.Count(); ++i) {
        controls.Cmd_Icon(i).SetImage(parts_.icons.Icon(kFirstAdjustmentIcon + i));
        controls.Cmd_Icon(i).SetDecorative(true);
    }
    controls.GroupBox_Icons(0).SetFramed(false);
    controls.GroupBox_Icons(0).SetEnabled(false);
    for (PushButton* const reset : controls.Cmd_ResetEffects) {
        reset->SetImage(parts_.icons.Icon(kResetIcon));
        reset->SetCaption(QString());
        reset->SetFlat(true);
    }
    for (const ButtonImage& row : kButtonImages) {
        (controls.*row.array)(row.element).SetImage(parts_.icons.Icon(row.icon));
    }
    for (const Buttons array : kFlatButtons) {
        for (PushButton* const button : controls.*array) {
            button->SetFlat(true);
        }
    }
    for (const auto* const labels : {&controls.lbl_SliderTab, &controls.lbl_SliderNameRightSide}) {
        for (Label* const label : *labels) {
            label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        }
    }
}

void StartUp::SetToolTips() {
    for (const ToolTipRow& row : kToolTips) {
        (parts_.controls.*row.button)(0).SetToolTip(QString::fromLatin1(row.text));
    }
}

QString StartUp::ChooseDialogFolder() const {
    for (const int folder : {kPicturesFolder, kDocumentsFolder}) {
        if (!GetSpecialPath(folder).trimmed().isEmpty()) {
            return GetSpecialPath(folder);
        }
    }
    return GetSpecialPath(kDesktopFolder);
}

void StartUp::ConfigureControls() {
    constexpr int kNoBorder = 0;
    constexpr int kBestScaling = 4;
    parts_.controls.ImageView(kSlot).SetBorderStyle(kNoBorder);
    parts_.controls.ImageView(kSlot).SetScalingQuality(kBestScaling);
    const auto& sliders = parts_.controls.Slider_Tab;
    for (int i = 0; i < kSliderCount; ++i) {
        const SliderRow& row = SliderCatalogue()[static_cast<std::size_t>(i)];
        sliders(i).SetNeutral(row.defaultValue);
        sliders(i).SetTickSpacing(row.tickSpacing);
        sliders(i).SetShownText([i](int value) { return SliderValueText(i, value); });
    }
    FillPredefinedSizes();
    ConfigureHistoryList();
}

void StartUp::FillPredefinedSizes() {
    ComboBox& list = parts_.controls.Combo_ResizePredefined;
    list.Clear();
    for (const PredefinedSize& size : kPredefinedSizes) {
        list.AddEntry(FromView(size.label), FromView(size.data));
    }
}

void StartUp::ConfigureHistoryList() {
    ReportList& list = parts_.controls.HistoryList;
    list.AddColumn(static_cast<int>(HistoryColumn::Caption), QStringLiteral("History"), 315, true);
    list.AddColumn(static_cast<int>(HistoryColumn::ImageFile), QStringLiteral("ImageFile"), 380, true);
    list.AddColumn(static_cast<int>(HistoryColumn::Active), QStringLiteral("Active"), 100, true);
    list.ShowColumn(static_cast<int>(HistoryColumn::ImageFile), false);
    list.ShowColumn(static_cast<int>(HistoryColumn::Active), false);
}

void StartUp::ResetPanels() {
    parts_.historyPanel.UpdateUndoRedoButtons();
    for (const int group : kSliderGroups) {
        parts_.toolPanels.ResetSliderGroup(group);
    }
    parts_.resizePanel.ResetToOriginalSize();
    parts_.controls.Cmd_Tab(kLockButton).SetTag(QStringLiteral("1"));
    parts_.editor.Document.PreviewOutdated = false;
    parts_.editor.Document.LivePreviewMode = true;
    parts_.previewWindow.Unload();
    parts_.pictureControls.SetEditingEnabled(false);
}

void StartUp::Timer_StartUp_Timer() {
    CarryOn([&] { parts_.timers.Timer_StartUp.stop(); },
            [&] {
                if (UpdateAvailable_) {
                    DownloadChosen_ = parts_.showUpdates();
                }
            },
            [&] { parts_.popups.BlinkButton(OpenButton(), true, kBlinkInterval); }, //
            [&] { OpenButton().SetEnabled(true); },
            // Scan had it as the first that could, unseen: the space bar would have scanned.
            [&] { OpenButton().setFocus(Qt::TabFocusReason); }, [&] { parts_.offerRecovery(); },
            [&] {
                if (!DownloadChosen_) {
                    parts_.timers.Timer_Tags.start();
                }
            },
            [&] {
                if (!filesToOpen_.isEmpty()) {
                    parts_.openFiles(filesToOpen_);
                }
            });
}

void StartUp::Timer_Tags_Timer() {
    CarryOn(
        [&] { DownloadChosen_ = false; },
        [&] {
            // Whoever has begun already needs no notice of how to begin, least of all over the dialog.
            if (QApplication::activeModalWidget() == nullptr && !parts_.editor.IsBusy() && !IsPictureOpen()) {
                ShowGettingStartedTag(parts_.tag, parts_.window.frameGeometry().topLeft(),
                                      InApplicationFolder("\\pics\\img_tag_gettingstarted.png"),
                                      parts_.editor.Document.GetTempFolder());
            }
        },
        [&] { parts_.timers.Timer_Tags.stop(); }, //
        [&] { OpenButton().SetEnabled(true); });
}

} // namespace pictorel

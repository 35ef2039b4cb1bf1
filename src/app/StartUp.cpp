// The start-up sequence, see StartUp.h.
#include "app/StartUp.h"

#include "app/IconTable.h"
#include "app/KeyboardWalk.h"
#include "app/frmMain.h"
#include "controls/ComboBox.h"
#include "controls/WebBrowser.h"
#include "editor/PredefinedSizes.h"
#include "editor/SliderCatalogue.h"
#include "platform/CarryOn.h"
#include "platform/PumpEvents.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>

#include <array>

namespace pictorel {
namespace {

constexpr int kBlinkInterval = 500; // milliseconds
constexpr int kOpenButton = 0;
constexpr PictureSlot kSlot = 0;

constexpr std::array kFlatButtons{"Cmd_Panel",   "Cmd_Recommend", "Cmd_ZoomIn",     "Cmd_ZoomOut",
                                  "Cmd_FlipV",   "Cmd_FlipH",     "Cmd_RotateLeft", "Cmd_RotateRight",
                                  "Cmd_ZoomFit", "Cmd_ActualSize"};

struct ToolTipRow {
    const char* name;
    const char* text;
};

constexpr std::array kToolTips{
    ToolTipRow{"Cmd_ZoomIn", "Zoom In"},         ToolTipRow{"Cmd_ZoomOut", "Zoom Out"},
    ToolTipRow{"Cmd_FlipV", "Flip Vertical"},    ToolTipRow{"Cmd_FlipH", "Flip Horizontal"},
    ToolTipRow{"Cmd_RotateLeft", "Rotate Left"}, ToolTipRow{"Cmd_RotateRight", "Rotate Right"},
    ToolTipRow{"Cmd_ZoomFit", "Best Fit"},       ToolTipRow{"Cmd_ActualSize", "Actual Size"},
};

QString FromView(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString InApplicationFolder(std::string_view path) {
    return ApplicationFolder() + PlatformPath(FromView(path));
}

// Empty where the file cannot be read.
QByteArray BytesOf(const QString& fileName) {
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

StartResult StartUp::Form_Load(const QString& commandLine) {
    try {
        if (commandLine == QStringLiteral("homepage")) {
            OpenWebLink(kHomePageLink, window_.strings_);
            return StartResult::HomePage;
        }
        RunSequence();
        return StartResult::Started;
    } catch (const std::exception& error) {
        MessageBoxes(nullptr).Show(QString::fromUtf8(error.what()), QStringLiteral("Error in loading..."),
                                   MessageIcon::Exclamation);
        return StartResult::Failed;
    }
}

void StartUp::RunSequence() {
    PumpEvents();
    window_.setWindowTitle(window_.strings_.Entry(Text::Title));
    PumpEvents();
    window_.UpdateAvailable_ =
        window_.updateCheck_->CheckForUpdate(window_.controls_.Single<WebBrowser>("WebBrowser1"));
    window_.zoomScroll_->ZoomControlsSyncing = false;
    LoadSkin();
    PumpEvents();
    ShowSplash();
    LoadIcons();
    GiveButtonsTheirLooks();
    SetToolTips();
    NameControls(window_.controls_);
    SetTabOrder(window_.controls_);
    window_.document_.OpenDialogFolder = ChooseDialogFolder();
    window_.document_.SaveDialogFolder = ChooseDialogFolder();
    ConfigureControls();
    ResetPanels();
    const auto panel = window_.controls_.Array<PushButton>("Cmd_Panel");
    for (const int index : {5, 6, 7}) {
        panel(index).SetEnabled(true);
    }
    panel(kOpenButton).SetEnabled(false);
    SetTimers();
    window_.events_.On(window_.Timer_StartUp_, &QTimer::timeout, [this] { Timer_StartUp_Timer(); });
    window_.events_.On(window_.Timer_Tags_, &QTimer::timeout, [this] { Timer_Tags_Timer(); });
    window_.Timer_StartUp_.start();
    window_.showMaximized();
}

void StartUp::SetTimers() {
    struct TimerRow {
        QTimer& timer;
        const char* name;
        int interval; // milliseconds
        bool once;
    };
    for (const TimerRow& row : {TimerRow{window_.Timer_StartUp_, "Timer_StartUp", 300, true},
                                TimerRow{window_.Timer_Blink_, "Timer_Blink", kBlinkInterval, false},
                                TimerRow{window_.Timer_Tags_, "Timer_Tags", 500, true},
                                TimerRow{window_.Timer_Scanner_, "Timer_Scanner", 100, false}}) {
        row.timer.setObjectName(QString::fromLatin1(row.name));
        row.timer.setInterval(row.interval);
        row.timer.setSingleShot(row.once);
    }
}

void StartUp::LoadSkin() {
    SkinFramework& skin = window_.SkinFramework_;
    skin.LoadSkin(InApplicationFolder("\\Vista.cjstyles"), QStringLiteral("NormalBlack2.ini"));
    skin.ApplyWindow(window_);
    skin.SetApplyOptions(skin.ApplyOptions() | SkinFramework::kAllWindows);
}

void StartUp::ShowSplash() {
    const QString splash = InApplicationFolder("\\pics\\splash.png");
    ShowSplashPopup(window_.PopupControl_Splash_, window_, {BytesOf(splash), BytesOf(DenseCompanion(splash))},
                    window_.document_.GetTempFolder());
    while (window_.PopupControl_Splash_.CurrentState() != PopupControl::Closed) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

void StartUp::LoadIcons() {
    for (const IconRow& row : kIcons) {
        window_.icons_.Load(row.id, InApplicationFolder(row.file));
    }
}

void StartUp::GiveButtonsTheirLooks() {
    const ControlRegistry& controls = window_.controls_;
    const auto icons = controls.Array<PushButton>("Cmd_Icon");
    for (int i = 0; i < icons.Count(); ++i) {
        icons(i).SetImage(window_.icons_.Icon(kFirstAdjustmentIcon + i));
        icons(i).SetDecorative(true);
    }
    controls.Array<GroupBox>("GroupBox_Icons")(0).SetFramed(false);
    controls.Array<GroupBox>("GroupBox_Icons")(0).SetEnabled(false);
    for (PushButton* const reset : controls.Array<PushButton>("Cmd_ResetEffects")) {
        reset->SetImage(window_.icons_.Icon(kResetIcon));
        reset->SetCaption(QString());
        reset->SetFlat(true);
    }
    for (const ButtonImage& row : kButtonImages) {
        controls.Array<PushButton>(std::string(row.array))(row.element)
            .SetImage(window_.icons_.Icon(row.icon));
    }
    for (const char* const name : kFlatButtons) {
        for (PushButton* const button : controls.Array<PushButton>(name)) {
            button->SetFlat(true);
        }
    }
}

void StartUp::SetToolTips() {
    for (const ToolTipRow& row : kToolTips) {
        window_.controls_.Array<PushButton>(row.name)(0).SetToolTip(QString::fromLatin1(row.text));
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
    window_.document_.Views(kSlot).SetBorderStyle(kNoBorder);
    window_.document_.Views(kSlot).SetScalingQuality(kBestScaling);
    window_.preview_->View().SetBorderStyle(kNoBorder);
    const auto sliders = window_.controls_.Array<Slider>("Slider_Tab");
    for (int i = 0; i < kSliderCount; ++i) {
        sliders(i).SetTickSpacing(SliderCatalogue()[static_cast<std::size_t>(i)].tickSpacing);
    }
    FillPredefinedSizes();
    ConfigureHistoryList();
}

void StartUp::FillPredefinedSizes() {
    auto& list = window_.controls_.Single<ComboBox>("Combo_ResizePredefined");
    list.Clear();
    for (const PredefinedSize& size : kPredefinedSizes) {
        list.AddEntry(FromView(size.label), FromView(size.data));
    }
}

void StartUp::ConfigureHistoryList() {
    ReportList& list = window_.HistoryList();
    list.AddColumn(static_cast<int>(HistoryColumn::Caption), QStringLiteral("History"), 315, true);
    list.AddColumn(static_cast<int>(HistoryColumn::ImageFile), QStringLiteral("ImageFile"), 380, true);
    list.AddColumn(static_cast<int>(HistoryColumn::Active), QStringLiteral("Active"), 100, true);
    list.ShowColumn(static_cast<int>(HistoryColumn::ImageFile), false);
    list.ShowColumn(static_cast<int>(HistoryColumn::Active), false);
}

void StartUp::ResetPanels() {
    EditHistory::UpdateUndoRedoButtons(window_.UndoButton(), window_.RedoButton(), window_.HistoryList());
    for (const int group : {1, 2, 3}) {
        window_.ResetSliderGroup(group);
    }
    window_.CheckOriginalSize();
    window_.ResetResizePanel();
    window_.controls_.Array<PushButton>("Cmd_Tab")(4).SetTag(QStringLiteral("1"));
    window_.livePreview_->PreviewOutdated = false;
    window_.document_.LivePreviewMode = true;
    window_.preview_->Unload();
    window_.SetEditingEnabled(false);
}

void StartUp::Timer_StartUp_Timer() {
    PushButton& open = window_.controls_.Array<PushButton>("Cmd_Panel")(kOpenButton);
    CarryOn([&] { window_.Timer_StartUp_.stop(); },
            [&] {
                if (window_.UpdateAvailable_) {
                    window_.ShowUpdates();
                }
            },
            [&] { window_.popups_->BlinkButton(open, true, kBlinkInterval); }, //
            [&] { open.SetEnabled(true); },
            [&] {
                if (!window_.DownloadChosen_) {
                    window_.Timer_Tags_.start();
                }
            });
}

void StartUp::Timer_Tags_Timer() {
    CarryOn([&] { window_.DownloadChosen_ = false; },
            [&] {
                ShowGettingStartedTag(window_.PopupControl_Tag_, window_.frameGeometry().topLeft(),
                                      InApplicationFolder("\\pics\\img_tag_gettingstarted.png"),
                                      window_.document_.GetTempFolder());
            },
            [&] { window_.Timer_Tags_.stop(); },
            [&] { window_.controls_.Array<PushButton>("Cmd_Panel")(kOpenButton).SetEnabled(true); });
}

} // namespace pictorel

// The start-up sequence: everything between the process's first step and the window at work.
#pragma once

#include "app/ApplicationStrings.h"
#include "app/CommandLine.h"
#include "app/MainControls.h"
#include "controls/Events.h"
#include "controls/IconStore.h"
#include "controls/PopupControl.h"
#include "controls/SkinFramework.h"
#include "editor/Editor.h"
#include "notices/Popup_Mod.h"
#include "notices/UpdateCheck.h"
#include "panels/HistoryPanel.h"
#include "panels/LivePreview.h"
#include "panels/PictureControls.h"
#include "panels/PreviewWindow.h"
#include "panels/ResizePanel.h"
#include "panels/ToolPanels.h"
#include "view/ZoomScroll.h"

#include <QString>
#include <QTimer>
#include <QWidget>

#include <functional>

namespace pictorel {

enum class StartResult {
    Started,  // the window is on the screen
    HomePage, // the home page was asked for and opened; the process ends with kHomePageExitCode
    Failed,   // a step failed and its message was shown; the process ends
};

inline constexpr int kHomePageExitCode = 5;

// Tells the person that the editor cannot start, and why.
void ShowStartFailure(const std::exception& error);

struct MainTimers {
    QTimer Timer_StartUp;
    QTimer Timer_Blink;
    QTimer Timer_Tags;
    QTimer Timer_Scanner;
};

// What the sequence sets up.
struct StartUpParts {
    QWidget& window;
    const MainControls& controls;
    MainTimers& timers;
    const ApplicationStrings& strings;
    IconStore& icons;
    SkinFramework& skin;
    PopupControl& splash;
    PopupControl& tag;
    Editor& editor;
    UpdateCheck& updateCheck;
    Popup_Mod& popups;
    PictureControls& pictureControls;
    HistoryPanel& historyPanel;
    ToolPanels& toolPanels;
    ResizePanel& resizePanel;
    ZoomScroll& zoomScroll;
    PreviewWindow& previewWindow;
    std::function<bool()> showUpdates;   // waits for the answer; true where the new version is wanted
    std::function<void()> offerRecovery; // of what other editors left
    std::function<void(const QStringList&)> openFiles; // as if they were dropped on the window
};

class StartUp {
  public:
    explicit StartUp(StartUpParts parts) : parts_(std::move(parts)) {}

    // The argument text "homepage" opens the home page; files are opened as soon as the window is ready, and
    // nobody who brings some is shown the splash.
    StartResult Form_Load(const CommandLine& commandLine);

    // The end of the sequence, 300 ms after the window is shown.
    void Timer_StartUp_Timer();
    void Timer_Tags_Timer();

  private:
    void RunSequence();
    void SetTimers();
    void LoadSkin();
    void ShowSplash();
    bool IsPictureOpen() const { return !parts_.editor.Document.WorkingPicture(kSlot).IsEmpty(); }
    void LoadIcons();
    void GiveButtonsTheirLooks();
    void SetToolTips();
    QString ChooseDialogFolder() const;
    void ConfigureControls();
    void FillPredefinedSizes();
    void ConfigureHistoryList();
    void ResetPanels();
    PushButton& OpenButton() const { return parts_.controls.Cmd_Panel(kOpenButton); }

    StartUpParts parts_;
    QStringList filesToOpen_;      // those of the command line
    bool UpdateAvailable_ = false; // a newer version is published
    bool DownloadChosen_ = false;  // the person chose "Update Now" in the update notice
    Events events_;
};

} // namespace pictorel

// The start-up sequence: everything between the process's first step and the window at work.
#pragma once

#include <QString>

namespace pictorel {

class frmMain;

enum class StartResult {
    Started,  // the window is on the screen
    HomePage, // the home page was asked for and opened; the process ends with kHomePageExitCode
    Failed,   // a step failed and its message was shown; the process ends
};

inline constexpr int kHomePageExitCode = 5;

class StartUp {
  public:
    explicit StartUp(frmMain& window) : window_(window) {}

    // `commandLine` is the whole argument text; "homepage" is the only one that means anything.
    StartResult Form_Load(const QString& commandLine);

    // The end of the sequence, 300 ms after the window is shown.
    void Timer_StartUp_Timer();
    void Timer_Tags_Timer();

  private:
    void RunSequence();
    void SetTimers();
    void LoadSkin();
    void ShowSplash();
    void LoadIcons();
    void GiveButtonsTheirLooks();
    void SetToolTips();
    QString ChooseDialogFolder() const;
    void ConfigureControls();
    void FillPredefinedSizes();
    void ConfigureHistoryList();
    void ResetPanels();

    frmMain& window_;
};

} // namespace pictorel

// The look of the window, loaded from a skin file.
#pragma once

#include <QPalette>
#include <QString>

class QWidget;

namespace pictorel {

// A skin file is a text of sections. "[name.ini]" begins a colour scheme: lines "role = #rrggbb", where a
// role is one of the palette's (Window, Text, Highlight, ..., with "Disabled." before it for the disabled
// state) or any other word. "[style]" begins a Qt style sheet in which "@role" stands for the colour of that
// role. ";" begins a comment.
class SkinFramework {
  public:
    // Options of ApplyOptions: 1 gives the look to every window of the process, not only to the one it is
    // applied to.
    static constexpr unsigned kAllWindows = 1;

    void LoadSkin(const QString& fileName, const QString& scheme); // 2; throws ControlError
    void ApplyWindow(QWidget& window);                             // 3
    unsigned ApplyOptions() const { return options_; }             // 1
    void SetApplyOptions(unsigned options);                        // 1

  private:
    QPalette palette_;
    QString styleSheet_;
    unsigned options_ = 0;
};

} // namespace pictorel

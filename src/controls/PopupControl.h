// A passive notice: a picture that fades in, stays for a while and fades out by itself.
#pragma once

#include "controls/NoticeWindow.h"

#include <QObject>
#include <QTimer>

#include <map>
#include <memory>

class QWidget;

namespace pictorel {

// The file that holds a picture at twice the size, for dense screens: "tag@2x.png" of "tag.png".
QString DenseCompanion(const QString& fileName);

// The number of each setting in the interface that the notices are written against stands behind it.
class PopupControl : public QObject {
    Q_OBJECT

  public:
    PopupControl(QWidget* owner, const QString& name);
    ~PopupControl() override;

    enum State { Closed = 0, Showing = 1 }; // 14

    // 18; loads the picture, and the dense companion beside it where there is one. Throws ControlError where
    // the picture cannot be loaded.
    void AddPicture(const QString& fileName, int id);
    void SetBackground(int pictureId) { background_ = pictureId; }         // 38
    void SetAnimationTime(int milliseconds) { animation_ = milliseconds; } // 5
    void SetDisplayTime(int milliseconds) { display_ = milliseconds; }     // 6
    void SetSize(int width, int height);                                   // 2, 3; pixels
    void SetOpacity(int opacity) { opacity_ = opacity; }                   // 7; 0..255
    void SetAnchor(double x, double y); // 8, 9; bottom-right corner on the screen

    int Width() const { return width_; }
    int Height() const { return height_; }
    State CurrentState() const { return window_ ? Showing : Closed; }

    void Show();  // 11
    void Close(); // 15; at once

  private:
    void Tick();

    QWidget* owner_;
    std::unique_ptr<NoticeWindow> window_;
    std::map<int, NoticePicture> pictures_;
    QTimer ticker_;
    qint64 shownAt_ = 0; // milliseconds of the steady clock
    int background_ = 0;
    int animation_ = 0;
    int display_ = 0;
    int opacity_ = 255;
    int width_ = 0;
    int height_ = 0;
    double anchorX_ = 0;
    double anchorY_ = 0;
};

} // namespace pictorel

// A passive notice: a picture that fades in, stays for a while and fades out by itself.
#pragma once

#include <QObject>
#include <QPixmap>
#include <QTimer>

#include <map>
#include <memory>

class QWidget;

namespace pictorel {

// The number of each setting in the interface that the notices are written against stands behind it.
class PopupControl : public QObject {
    Q_OBJECT

  public:
    PopupControl(QWidget* owner, const QString& name);
    ~PopupControl() override;

    enum State { Closed = 0, Showing = 1 }; // 14

    void AddPicture(const QString& fileName, int id); // 18; throws ControlError where it cannot be loaded
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
    std::unique_ptr<QWidget> window_;
    std::map<int, QPixmap> pictures_;
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

// The window of a passive notice: a picture with soft edges that can be faded.
#pragma once

#include <QPixmap>
#include <QWidget>

namespace pictorel {

struct NoticePicture {
    QPixmap standard;
    QPixmap dense; // for screens with more than one device pixel to the pixel; null where there is none
};

// Takes neither input nor focus. It fades by painting, not by asking the window manager, which on some
// desktops cannot; where there is no compositor, the notice is painted over a copy of what was on the screen
// in its place, so that its edges are soft there too.
class NoticeWindow : public QWidget {
  public:
    // `place` in screen pixels of the desktop; the picture fills it.
    NoticeWindow(QWidget* owner, const NoticePicture& picture, const QRect& place);

    void SetFade(double opacity); // 0 invisible to 1

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    NoticePicture picture_;
    QPixmap behind_; // null where a compositor does the mixing
    double opacity_ = 0;
};

} // namespace pictorel

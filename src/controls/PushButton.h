// A push button with a picture, a caption or both.
#pragma once

#include "controls/Control.h"

#include <QAbstractButton>
#include <QIcon>

#include <optional>

namespace pictorel {

class PushButton : public QAbstractButton, public Control {
    Q_OBJECT

  public:
    explicit PushButton(QWidget* parent);

    void SetCaption(const QString& text) override;
    QString Caption() const { return text(); }
    void SetImage(const QIcon& image);

    // Flat buttons show no frame until the pointer is on them.
    void SetFlat(bool flat);

    // The attention state that a blinking button alternates.
    void SetHighlighted(bool highlighted);
    bool IsHighlighted() const { return highlighted_; }

    // A button that only carries a picture looks by its own enabled state, not by its container's, and takes
    // no focus and no clicks.
    // A button that is a switch tells assistive tools whether it is on.
    void SetOn(bool on) { on_ = on; }
    std::optional<bool> IsOn() const { return on_; }

    void SetDecorative(bool decorative);

    // The keys that click the button, as its tool tip shows them behind the text (or, without one, behind the
    // caption).
    void SetShortcutText(const QString& keys) { shortcutText_ = keys; }
    QString ShownToolTip() const;

    void SetEnabled(bool enabled) override;

    QSize sizeHint() const override;

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

  private:
    bool LooksEnabled() const { return decorative_ ? IsEnabled() : isEnabled(); }
    void PaintFrame(QPainter& painter) const;
    void PaintContent(QPainter& painter) const;

    QIcon image_;
    QString shortcutText_;
    bool flat_ = false;
    std::optional<bool> on_;
    bool highlighted_ = false;
    bool decorative_ = false;
    bool focusedByKeyboard_ = false; // the focus ring is for those who walk by keyboard
};

} // namespace pictorel

// What every control has beside being a widget: a name, a place in twips, and an enabled state of its own.
#pragma once

#include "controls/Twips.h"

#include <QString>

#include <stdexcept>

class QWidget;

namespace pictorel {

// A control was addressed or set in a way it refuses; the text names the control.
struct ControlError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// A second base of every widget class of this folder. Lengths are kept in twips as they were set, so that
// formulas that read them back are exact; the widget stands on the nearest pixels. A negative width or height
// is refused with ControlError and changes nothing.
class Control {
  public:
    explicit Control(QWidget& widget) : widget_(widget) {}
    virtual ~Control() = default;
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    QWidget& Widget() { return widget_; }
    const QWidget& Widget() const { return widget_; }
    QString Name() const;

    float Left() const { return place_.left; }
    float Top() const { return place_.top; }
    float Width() const { return place_.width; }
    float Height() const { return place_.height; }
    void SetLeft(float twips);
    void SetTop(float twips);
    void SetWidth(float twips);
    void SetHeight(float twips);
    void SetBounds(const TwipsRect& place);

    // The control's own state, whatever its container's.
    virtual bool IsEnabled() const { return enabled_; }
    virtual void SetEnabled(bool enabled);
    void SetVisible(bool visible);
    void SetToolTip(const QString& text);

    // A text that handlers keep with a control; nothing shows it.
    const QString& Tag() const { return tag_; }
    void SetTag(const QString& tag) { tag_ = tag; }

    // The caption or text of the control; kinds that have none ignore it.
    virtual void SetCaption(const QString&) {}

    // The range of what the control counts, and where in it it stands; kinds that count nothing ignore it. A
    // page of 0 is the kind's own.
    virtual void SetValueRange(int /*minimum*/, int /*maximum*/, int /*value*/, int /*page*/) {}

    // Paints what is pending on this control at once, in the middle of a handler.
    void RepaintNow();

    // Where child controls are put; the widget itself for most.
    virtual QWidget& Interior() { return widget_; }

  protected:
    virtual void Place(); // puts the widget where the control is

  private:
    QWidget& widget_;
    TwipsRect place_;
    QString tag_;
    bool enabled_ = true;
};

} // namespace pictorel

// What screen readers are told of the window, see Spoken.h.
#include "app/Spoken.h"

#include "controls/Line.h"
#include "controls/PushButton.h"
#include "controls/Shape.h"
#include "controls/Slider.h"
#include "controls/UpDown.h"
#include "view/PictureView.h"

#include <QAccessible>
#include <QAccessibleWidget>

#include <cmath>
#include <limits>

namespace pictorel {
namespace {

// What is only to be looked at.
class Decoration : public QAccessibleWidget {
  public:
    explicit Decoration(QWidget& widget) : QAccessibleWidget(&widget, QAccessible::Separator) {}
    QAccessible::State state() const override {
        QAccessible::State state;
        state.invisible = true;
        return state;
    }
};

// A value that can be read and set.
class Valued : public QAccessibleWidget, public QAccessibleValueInterface {
  public:
    using QAccessibleWidget::QAccessibleWidget;
    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }
    QVariant minimumStepSize() const override { return 1; }
};

// "1.05" is 1.05 and "20%" is 20: what is heard is what is seen.
class SpokenSlider : public Valued {
  public:
    explicit SpokenSlider(Slider& slider) : Valued(&slider, QAccessible::Slider), slider_(slider) {}

    QVariant currentValue() const override { return Shown(slider_.value()); }
    QVariant minimumValue() const override { return Shown(slider_.minimum()); }
    QVariant maximumValue() const override { return Shown(slider_.maximum()); }
    void setCurrentValue(const QVariant& wanted) override {
        int best = slider_.value();
        double distance = std::numeric_limits<double>::max();
        for (int value = slider_.minimum(); value <= slider_.maximum(); ++value) {
            if (const double off = std::abs(Shown(value) - wanted.toDouble()); off < distance) {
                best = value;
                distance = off;
            }
        }
        slider_.Choose(best);
    }
    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value ? slider_.ShownText(slider_.value()) : Valued::text(kind);
    }

  private:
    double Shown(int value) const {
        const QString text = slider_.ShownText(value);
        qsizetype length = 0;
        while (length < text.size() &&
               (text[length].isDigit() || text[length] == u'.' || text[length] == u'-')) {
            ++length;
        }
        bool isNumber = false;
        const double shown = text.left(length).toDouble(&isNumber);
        return isNumber ? shown : value;
    }

    Slider& slider_;
};

class SpokenSpinner : public Valued {
  public:
    explicit SpokenSpinner(UpDown& spinner) : Valued(&spinner, QAccessible::SpinBox), spinner_(spinner) {}

    QVariant currentValue() const override { return spinner_.Value(); }
    QVariant minimumValue() const override { return spinner_.Minimum(); }
    QVariant maximumValue() const override { return spinner_.Maximum(); }
    void setCurrentValue(const QVariant& wanted) override { spinner_.Choose(wanted.toInt()); }

  private:
    UpDown& spinner_;
};

// A button, a switch that stays as it is pressed, or a picture beside something else: which of them is known
// only after the button was first asked about.
class SpokenButton : public QAccessibleWidget {
  public:
    explicit SpokenButton(PushButton& button)
        : QAccessibleWidget(&button, QAccessible::Button), button_(button) {}

    QAccessible::Role role() const override {
        if (IsDecoration()) {
            return QAccessible::Separator;
        }
        return button_.IsOn() ? QAccessible::CheckBox : QAccessible::Button;
    }
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.invisible = state.invisible || IsDecoration();
        state.pressed = button_.isDown();
        state.checkable = button_.IsOn().has_value();
        state.checked = button_.IsOn().value_or(false);
        return state;
    }
    QString text(QAccessible::Text kind) const override {
        const QString text = QAccessibleWidget::text(kind);
        return kind == QAccessible::Name && text.isEmpty() ? button_.text() : text;
    }
    QStringList actionNames() const override {
        return {button_.IsOn() ? toggleAction() : pressAction(), setFocusAction()};
    }
    void doAction(const QString& name) override {
        name == setFocusAction() ? QAccessibleWidget::doAction(name) : button_.click();
    }

  private:
    bool IsDecoration() const { return button_.testAttribute(Qt::WA_TransparentForMouseEvents); }

    PushButton& button_;
};

QAccessibleInterface* Spoken(const QString& /*className*/, QObject* object) {
    auto* const widget = qobject_cast<QWidget*>(object);
    if (widget == nullptr) {
        return nullptr;
    }
    if (qobject_cast<Announcer*>(widget) != nullptr) {
        return new QAccessibleWidget(widget, QAccessible::Notification);
    }
    if (auto* const slider = qobject_cast<Slider*>(widget)) {
        return new SpokenSlider(*slider);
    }
    if (auto* const spinner = qobject_cast<UpDown*>(widget)) {
        return new SpokenSpinner(*spinner);
    }
    if (auto* const button = qobject_cast<PushButton*>(widget)) {
        return new SpokenButton(*button);
    }
    if (qobject_cast<Line*>(widget) != nullptr || qobject_cast<Shape*>(widget) != nullptr) {
        return new Decoration(*widget);
    }
    if (qobject_cast<PictureView*>(widget) != nullptr) {
        return new QAccessibleWidget(widget, QAccessible::Graphic);
    }
    const bool isOurs = widget->objectName() == QStringLiteral("frmMain") ||
                        widget->objectName() == QStringLiteral("frmPreview");
    return isOurs ? new QAccessibleWidget(widget, QAccessible::Window) : nullptr;
}

} // namespace

ScreenReaders::ScreenReaders() {
    QAccessible::installFactory(Spoken); // a second time it is not installed again
}

Announcer::Announcer(QWidget& window) : QWidget(&window) {
    setObjectName(QStringLiteral("Announcer"));
    setGeometry(0, 0, 1, 1); // what has no size is taken for hidden
}

void Announcer::Say(const QString& text) {
    if (QAccessible::isActive()) {
        setAccessibleName(text);
        hide(); // it comes up anew
        show();
    }
}

} // namespace pictorel

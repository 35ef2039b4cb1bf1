// What is typed into the Resize page's fields, see ResizePanel.h.
#include "panels/ResizePanel.h"
#include "platform/CarryOn.h"
#include "platform/Numbers.h"

namespace pictorel {
namespace {

constexpr int kBackspace = 8;

} // namespace

void ResizePanel::BindFields() {
    BindField(controls_.Txt_ImageWidth, controls_.UpDown_ImageWidth);
    BindField(controls_.Txt_ImageHeight, controls_.UpDown_ImageHeight);
    BindField(controls_.Txt_ResizePercent, controls_.UpDown_ResizePercent);
    events_.On(controls_.Txt_ImageWidth, &EditField::textChanged, [this](const QString&) {
        Box_Change(controls_.Txt_ImageWidth, controls_.UpDown_ImageWidth, editor_.Document.ImageWidth);
    });
    events_.On(controls_.Txt_ImageHeight, &EditField::textChanged, [this](const QString&) {
        Box_Change(controls_.Txt_ImageHeight, controls_.UpDown_ImageHeight, editor_.Document.ImageHeight);
    });
    events_.On(controls_.Txt_ResizePercent, &EditField::textChanged,
               [this](const QString&) { Txt_ResizePercent_Change(); });
}

void ResizePanel::BindField(EditField& box, UpDown& spinner) {
    spinner.SetBuddy(box);
    events_.On(box, &EditField::FocusLost, [this, &box, &spinner] { Box_LostFocus(box, spinner); });
    events_.On(box, &EditField::returnPressed, [this, &box, &spinner] { Box_LostFocus(box, spinner); });
    box.SetKeyFilter([&box](QChar key) { return FilterNumericKey(box, key.unicode()); });
}

bool ResizePanel::FilterNumericKey(const EditField& box, int key) {
    const bool isDigit = key >= '0' && key <= '9';
    if (isDigit || key == kBackspace || key == 0) {
        return true;
    }
    const int caret = box.hasSelectedText() ? box.selectionStart() : box.cursorPosition();
    return key == '-' && !box.text().contains(u'-') && caret == 0;
}

void ResizePanel::DisableField(EditField& box, UpDown& spinner) {
    box.SetEnabled(false); // first, so that emptying it is no typing
    box.clear();
    spinner.SetEnabled(false);
}

void ResizePanel::EnableField(EditField& box, UpDown& spinner) {
    box.SetEnabled(false);
    box.setText(QString::number(spinner.Value()));
    box.SetEnabled(true);
    spinner.SetEnabled(true);
}

void ResizePanel::Box_Change(EditField& box, const UpDown& spinner, const SlotTable<std::int16_t>& side) {
    if (!box.IsEnabled()) {
        return;
    }
    CarryOn([&] {
        if (ToWholeNumber(box.text()) > spinner.Maximum()) {
            // A picture's own side above the maximum must not be replaced by itself over and over.
            const QString own = QString::number(side(kSlot));
            if (box.text() != own) {
                box.setText(own);
            }
        }
    });
}

void ResizePanel::Box_LostFocus(EditField& box, UpDown& spinner) {
    if (!box.IsEnabled()) {
        return;
    }
    CarryOn(
        [&] {
            // The side that the other one's handler wrote stays as it is: taking it for typed would compute
            // the other back from its rounded value.
            const bool isTheOthers =
                &box != &controls_.Txt_ResizePercent && IsLocked() && !box.isModified() &&
                box.text() == QString::number(&box == &controls_.Txt_ImageWidth ? NewWidth : NewHeight);
            if (!isTheOthers) {
                spinner.SetValue(static_cast<int>(ToInt16(box.text())));
            }
        },
        [&] {
            if (ToWholeNumber(box.text()) > spinner.Maximum()) {
                box.setText(QString::number(spinner.Maximum()));
            }
        },
        [&] {
            // The spinner's lower bound holds for the text as well; what is no number gives way to it.
            bool isNumber = false;
            const int shown = box.text().toInt(&isNumber);
            if (!isNumber || shown < spinner.Minimum()) {
                box.setText(QString::number(isNumber ? spinner.Minimum() : spinner.Value()));
            }
        });
}

void ResizePanel::SettleTyping() {
    struct Field {
        EditField& box;
        UpDown& spinner;
    };
    for (const Field& field : {Field{controls_.Txt_ImageWidth, controls_.UpDown_ImageWidth},
                               Field{controls_.Txt_ImageHeight, controls_.UpDown_ImageHeight},
                               Field{controls_.Txt_ResizePercent, controls_.UpDown_ResizePercent}}) {
        if (field.box.isModified()) {
            Box_LostFocus(field.box, field.spinner);
            field.box.setText(field.box.text()); // from here on Ctrl+Z is the picture's
        }
    }
}

void ResizePanel::Txt_ResizePercent_Change() {
    EditField& box = controls_.Txt_ResizePercent;
    if (!box.IsEnabled()) {
        return;
    }
    CarryOn(
        [&] {
            if (ToWholeNumber(box.text()) > controls_.UpDown_ResizePercent.Maximum()) {
                box.setText(QStringLiteral("100"));
            }
        },
        [&] {
            const std::int16_t percent = ToInt16(box.text());
            if (percent >= controls_.UpDown_ResizePercent.Minimum()) {
                UsePercent(percent);
            }
        });
}

} // namespace pictorel

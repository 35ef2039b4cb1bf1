// The Resize page, see ResizePanel.h.
#include "resize/ResizePanel.h"

#include "platform/CarryOn.h"
#include "platform/Numbers.h"
#include "platform/PumpEvents.h"
#include "resize/ResizeArithmetic.h"

#include <utility>

namespace pictorel {
namespace {

constexpr PictureSlot kSlot = 0;
constexpr std::int16_t kDerive = -1;
constexpr int kOriginalLine = 0;
constexpr int kNewLine = 1;
constexpr int kLockedIcon = 2;
constexpr int kUnlockedIcon = 3;
constexpr int kBackspace = 8;

enum ResizeMode { OriginalSize, Predefined, Custom, Percentage };

void Write(Label& label, const QString& text) {
    label.SetCaption(text);
    label.RepaintNow();
}

} // namespace

ResizePanel::ResizePanel(Image_Mods& document, PictureFiles& files, ResizePanelControls controls,
                         ImageOperations& operations, EditHistory& history, const IconStore& icons,
                         RefitView refitView)
    : document_(document),
      files_(files),
      controls_(std::move(controls)),
      operations_(operations),
      history_(history),
      icons_(icons),
      refitView_(std::move(refitView)) {
    for (int i = 0; i < controls_.RadioButton_Resize.Count(); ++i) {
        events_.On(controls_.RadioButton_Resize(i), &RadioButton::clicked,
                   [this, i] { RadioButton_Resize_Click(i); });
    }
    events_.On(controls_.Combo_ResizePredefined, &ComboBox::currentIndexChanged,
               [this](int) { Combo_ResizePredefined_Click(); });
    events_.On(controls_.UpDown_ImageWidth, &UpDown::Changed, [this](int) { UpDown_ImageWidth_Change(); });
    events_.On(controls_.UpDown_ImageHeight, &UpDown::Changed, [this](int) { UpDown_ImageHeight_Change(); });
    events_.On(controls_.UpDown_ResizePercent, &UpDown::Changed,
               [this](int) { UpDown_ResizePercent_Change(); });
    events_.On(controls_.LockButton, &PushButton::clicked, [this] { Lock_Click(); });
    events_.On(controls_.ApplyButton, &PushButton::clicked, [this] { Apply_Click(); });
    BindFields();
}

void ResizePanel::BindFields() {
    BindField(controls_.Txt_ImageWidth, controls_.UpDown_ImageWidth);
    BindField(controls_.Txt_ImageHeight, controls_.UpDown_ImageHeight);
    BindField(controls_.Txt_ResizePercent, controls_.UpDown_ResizePercent);
    events_.On(controls_.Txt_ImageWidth, &EditField::textChanged, [this](const QString&) {
        Box_Change(controls_.Txt_ImageWidth, controls_.UpDown_ImageWidth, document_.ImageWidth);
    });
    events_.On(controls_.Txt_ImageHeight, &EditField::textChanged, [this](const QString&) {
        Box_Change(controls_.Txt_ImageHeight, controls_.UpDown_ImageHeight, document_.ImageHeight);
    });
    events_.On(controls_.Txt_ResizePercent, &EditField::textChanged,
               [this](const QString&) { Txt_ResizePercent_Change(); });
}

void ResizePanel::BindField(EditField& box, UpDown& spinner) {
    events_.On(box, &EditField::FocusLost, [this, &box, &spinner] { Box_LostFocus(box, spinner); });
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

void ResizePanel::ClearList() {
    controls_.Combo_ResizePredefined.Select(-1);
    controls_.Combo_ResizePredefined.SetEnabled(false);
}

void ResizePanel::RadioButton_Resize_Click(int mode) {
    const bool custom = mode == Custom;
    if (custom) {
        CarryOn([&] { controls_.UpDown_ImageWidth.SetValue(document_.ImageWidth(kSlot)); },
                [&] { controls_.UpDown_ImageHeight.SetValue(document_.ImageHeight(kSlot)); });
    }
    CarryOn(
        [&] {
            if (mode == Predefined) {
                controls_.Combo_ResizePredefined.SetEnabled(true);
                controls_.Combo_ResizePredefined.Select(
                    -1); // so that choosing the first row is always a change
                controls_.Combo_ResizePredefined.Select(0);
            } else {
                ClearList();
            }
        },
        [&] {
            const auto setField = custom ? &ResizePanel::EnableField : &ResizePanel::DisableField;
            (this->*setField)(controls_.Txt_ImageWidth, controls_.UpDown_ImageWidth);
            (this->*setField)(controls_.Txt_ImageHeight, controls_.UpDown_ImageHeight);
        },
        [&] { controls_.LockButton.SetEnabled(custom); },
        [&] {
            const auto setField = mode == Percentage ? &ResizePanel::EnableField : &ResizePanel::DisableField;
            (this->*setField)(controls_.Txt_ResizePercent, controls_.UpDown_ResizePercent);
        },
        [&] { controls_.ApplyButton.SetEnabled(mode != OriginalSize); },
        [&] {
            if (mode == Percentage) {
                UpDown_ResizePercent_Change();
            }
        },
        [&] { files_.ReadImageWidth(kSlot); }, //
        [&] { files_.ReadImageHeight(kSlot); },
        [&] {
            const QString original = PixelSizeText(document_.ImageWidth(kSlot), document_.ImageHeight(kSlot));
            Write(controls_.lbl_Resize(kOriginalLine), original);
            if (mode == OriginalSize) {
                Write(controls_.lbl_Resize(kNewLine), original);
            }
        });
}

void ResizePanel::Combo_ResizePredefined_Click() {
    if (controls_.Combo_ResizePredefined.SelectedText().trimmed().isEmpty()) {
        return;
    }
    CarryOn([&] { UseComputedSize(controls_.Combo_ResizePredefined.SelectedData()); });
}

void ResizePanel::UseComputedSize(const QString& text) {
    const PictureSize size = SplitSize(text);
    NewWidth = size.width;
    NewHeight = size.height;
    ShowNewSize();
}

void ResizePanel::ShowNewSize() {
    Write(controls_.lbl_Resize(kNewLine), PixelSizeText(NewWidth, NewHeight));
}

void ResizePanel::UpDown_ImageWidth_Change() {
    CarryOn([&] {
        const std::int16_t width = ToInt16(static_cast<std::int64_t>(controls_.UpDown_ImageWidth.Value()));
        if (!IsLocked()) {
            NewWidth = width;
            ShowNewSize();
            return;
        }
        UseComputedSize(ComputeResizeSize(document_.ImageWidth(kSlot), document_.ImageHeight(kSlot), width,
                                          kDerive, false, 0));
        controls_.Txt_ImageHeight.setText(QString::number(NewHeight));
    });
}

void ResizePanel::UpDown_ImageHeight_Change() {
    CarryOn([&] {
        const std::int16_t height = ToInt16(static_cast<std::int64_t>(controls_.UpDown_ImageHeight.Value()));
        if (!IsLocked()) {
            NewHeight = height;
            ShowNewSize();
            return;
        }
        UseComputedSize(ComputeResizeSize(document_.ImageWidth(kSlot), document_.ImageHeight(kSlot), kDerive,
                                          height, false, 0));
        controls_.Txt_ImageWidth.setText(QString::number(NewWidth));
    });
}

void ResizePanel::UsePercent(std::int16_t percent) {
    UseComputedSize(
        ComputeResizeSize(document_.ImageWidth(kSlot), document_.ImageHeight(kSlot), 0, 0, true, percent));
}

void ResizePanel::UpDown_ResizePercent_Change() {
    CarryOn([&] { UsePercent(ToInt16(static_cast<std::int64_t>(controls_.UpDown_ResizePercent.Value()))); });
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
    CarryOn([&] { spinner.SetValue(static_cast<int>(ToInt16(box.text()))); },
            [&] {
                if (ToWholeNumber(box.text()) > spinner.Maximum()) {
                    box.setText(QString::number(spinner.Maximum()));
                }
            },
            [&] {
                // The spinner's lower bound holds for the text as well.
                if (ToWholeNumber(box.text()) < spinner.Minimum()) {
                    box.setText(QString::number(spinner.Minimum()));
                }
            });
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

void ResizePanel::Lock_Click() {
    PushButton& lock = controls_.LockButton;
    CarryOn([&] { lock.SetEnabled(false); },
            [&] {
                if (lock.Tag() == QStringLiteral("0")) {
                    lock.SetTag(QStringLiteral("1"));
                    UpDown_ImageWidth_Change();
                    lock.SetImage(icons_.Icon(kLockedIcon));
                } else {
                    lock.SetTag(QStringLiteral("0"));
                    lock.SetImage(icons_.Icon(kUnlockedIcon));
                }
            },
            [&] { lock.SetEnabled(true); });
}

void ResizePanel::Apply_Click() {
    CarryOn([&] { controls_.ApplyButton.SetEnabled(false); },
            [&] { operations_.ApplyImageOperation(kSlot, kResizeOperation, false, NewWidth, NewHeight, 0); },
            [] { PumpEvents(); },                  //
            [&] { files_.ReadImageWidth(kSlot); }, //
            [&] { files_.ReadImageHeight(kSlot); },
            [&] {
                const int width = document_.ImageWidth(kSlot);
                const int height = document_.ImageHeight(kSlot);
                Write(controls_.lbl_ImageInfo, ImageInfoText(width, height));
                Write(controls_.lbl_Resize(kOriginalLine), PixelSizeText(width, height));
            },
            [&] { refitView_(); },
            [&] { history_.AddHistoryEntry(QStringLiteral("Resize"), kSlot, controls_.HistoryList); },
            [&] {
                EditHistory::UpdateUndoRedoButtons(controls_.UndoButton, controls_.RedoButton,
                                                   controls_.HistoryList);
            },
            [&] { controls_.ApplyButton.SetEnabled(true); });
}

} // namespace pictorel

// The Resize page, see ResizePanel.h.
#include "panels/ResizePanel.h"

#include "controls/FocusKeeper.h"
#include "editor/ResizeArithmetic.h"
#include "panels/IconTable.h"
#include "picture/Limits.h"
#include "platform/CarryOn.h"
#include "platform/Numbers.h"
#include "platform/Texts.h"

#include <algorithm>
#include <utility>

namespace pictorel {
namespace {

constexpr int kOriginalLine = 0;
constexpr int kNewLine = 1;

enum ResizeMode { OriginalSize, Predefined, Custom, Percentage };

void Write(Label& label, const QString& text) {
    label.SetCaption(text);
    label.RepaintNow();
}

} // namespace

ResizePanel::ResizePanel(Editor& editor, ResizePanelControls controls, HistoryPanel& historyPanel,
                         const IconStore& icons, Messages& messages, RefitView refitView)
    : editor_(editor),
      controls_(std::move(controls)),
      historyPanel_(historyPanel),
      icons_(icons),
      messages_(messages),
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

void ResizePanel::ClearList() {
    controls_.Combo_ResizePredefined.Select(-1);
    controls_.Combo_ResizePredefined.SetEnabled(false);
}

void ResizePanel::RadioButton_Resize_Click(int mode) {
    mode_ = mode;
    const bool custom = mode == Custom;
    if (custom) {
        CarryOn([&] { controls_.UpDown_ImageWidth.SetValue(PictureWidth()); },
                [&] { controls_.UpDown_ImageHeight.SetValue(PictureHeight()); });
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
        [&] {
            const auto setField = mode == Percentage ? &ResizePanel::EnableField : &ResizePanel::DisableField;
            (this->*setField)(controls_.Txt_ResizePercent, controls_.UpDown_ResizePercent);
        },
        [&] { SettleButtons(); },
        [&] {
            if (custom) {
                // Last the width: a picture larger than the spinners count shows two sides that belong
                // together.
                UpDown_ImageHeight_Change();
                UpDown_ImageWidth_Change();
            }
        },
        [&] {
            if (mode == Percentage) {
                UpDown_ResizePercent_Change();
            }
        },
        [&] { editor_.Files.ReadImageWidth(kSlot); },  //
        [&] { editor_.Files.ReadImageHeight(kSlot); }, //
        [&] { ShowSizes(); });
}

void ResizePanel::ResetToOriginalSize() {
    CarryOn([&] { controls_.RadioButton_Resize(OriginalSize).setChecked(true); },
            [&] { RadioButton_Resize_Click(OriginalSize); });
}

void ResizePanel::SettleButtons() {
    controls_.LockButton.SetEnabled(mode_ == Custom);
    controls_.ApplyButton.SetEnabled(mode_ != OriginalSize);
}

void ResizePanel::ShowSizes() {
    const QString original = PixelSizeText(PictureWidth(), PictureHeight());
    Write(controls_.lbl_Resize(kOriginalLine), original);
    if (mode_ == OriginalSize) {
        Write(controls_.lbl_Resize(kNewLine), original);
    }
}

void ResizePanel::PictureSizeChanged() {
    if (applying_ || mode_ == OriginalSize || mode_ == Predefined) {
        ShowSizes(); // what was chosen or computed before holds for any picture
    } else {
        RadioButton_Resize_Click(mode_);
    }
}

void ResizePanel::Combo_ResizePredefined_Click() {
    // Filling the list selects a row as well, which nobody chose.
    if (mode_ != Predefined || controls_.Combo_ResizePredefined.SelectedText().trimmed().isEmpty()) {
        return;
    }
    CarryOn([&] { UseSize(controls_.Combo_ResizePredefined.SelectedData()); });
}

void ResizePanel::UseSize(const QString& text) {
    const PictureSize size = SplitSize(text);
    NewWidth = size.width;
    NewHeight = size.height;
    ShowNewSize();
}

// A side that could not be computed is 0: too small where the picture shrinks, too large where it grows.
void ResizePanel::UseComputedSize(const QString& text, bool enlarges) {
    const PictureSize size = SplitSize(text);
    isTooLarge_ = enlarges && (size.width < 1 || size.height < 1);
    if (isTooLarge_) {
        Write(controls_.lbl_Resize(kNewLine), QStringLiteral("too large"));
        return;
    }
    NewWidth = std::max<std::int16_t>(size.width, 1);
    NewHeight = std::max<std::int16_t>(size.height, 1);
    ShowNewSize();
}

void ResizePanel::ShowNewSize() {
    isTooLarge_ = false;
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
        UseComputedSize(ComputeResizeSize(PictureWidth(), PictureHeight(), width, kDeriveSide, false, 0),
                        width > PictureWidth());
        controls_.Txt_ImageHeight.setText(isTooLarge_ ? QString() : QString::number(NewHeight));
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
        UseComputedSize(ComputeResizeSize(PictureWidth(), PictureHeight(), kDeriveSide, height, false, 0),
                        height > PictureHeight());
        controls_.Txt_ImageWidth.setText(isTooLarge_ ? QString() : QString::number(NewWidth));
    });
}

void ResizePanel::UsePercent(std::int16_t percent) {
    UseComputedSize(ComputeResizeSize(PictureWidth(), PictureHeight(), 0, 0, true, percent), percent > 100);
}

void ResizePanel::UpDown_ResizePercent_Change() {
    CarryOn([&] { UsePercent(ToInt16(static_cast<std::int64_t>(controls_.UpDown_ResizePercent.Value()))); });
}

void ResizePanel::Lock_Click() {
    PushButton& lock = controls_.LockButton;
    CarryOn([&] { SettleTyping(); }, [&] { lock.SetEnabled(false); },
            [&] {
                if (lock.Tag() == QStringLiteral("0")) {
                    lock.SetTag(QStringLiteral("1"));
                    lock.SetOn(true);
                    UpDown_ImageWidth_Change();
                    lock.SetImage(icons_.Icon(kLockedIcon));
                } else {
                    lock.SetTag(QStringLiteral("0"));
                    lock.SetOn(false);
                    lock.SetImage(icons_.Icon(kUnlockedIcon));
                }
            },
            [&] { lock.SetEnabled(true); });
}

bool ResizePanel::MayApply() {
    if (!isTooLarge_ && NewWidth >= 1 && NewHeight >= 1) {
        return true;
    }
    messages_.Show(QStringLiteral("The picture cannot be made that large. A picture may be at most "
                                  "%L1 pixels wide and %L1 pixels high.")
                       .arg(kMaximumSide),
                   QStringLiteral("Resize"), MessageIcon::Exclamation);
    return false;
}

void ResizePanel::Apply_Click() {
    bool mayApply = false;
    CarryOn([&] { SettleTyping(); }, [&] { mayApply = mode_ != OriginalSize && MayApply(); });
    if (!mayApply) {
        return;
    }
    const FocusKeeper focus(controls_.ApplyButton);
    applying_ = true;
    CarryOn([&] { controls_.ApplyButton.SetEnabled(false); },
            [&] {
                editor_.Commit(FromView(RowOf(Operation::Resize).caption), Operation::Resize,
                               {NewWidth, NewHeight, 0}, refitView_);
            },
            [&] { historyPanel_.UpdateUndoRedoButtons(); }, //
            [&] { controls_.ApplyButton.SetEnabled(true); });
    applying_ = false;
}

} // namespace pictorel

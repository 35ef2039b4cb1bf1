// The Resize page: four ways to choose a new size, and "Apply".
#pragma once

#include "controls/ComboBox.h"
#include "controls/ControlArray.h"
#include "controls/EditField.h"
#include "controls/Events.h"
#include "controls/IconStore.h"
#include "controls/Label.h"
#include "controls/PushButton.h"
#include "controls/RadioButton.h"
#include "controls/UpDown.h"
#include "editor/Editor.h"
#include "panels/HistoryPanel.h"
#include "platform/Messages.h"

#include <QIcon>

#include <functional>

namespace pictorel {

struct ResizePanelControls {
    ControlArray<RadioButton> RadioButton_Resize;
    ComboBox& Combo_ResizePredefined;
    EditField& Txt_ImageWidth;
    EditField& Txt_ImageHeight;
    EditField& Txt_ResizePercent;
    UpDown& UpDown_ImageWidth;
    UpDown& UpDown_ImageHeight;
    UpDown& UpDown_ResizePercent;
    PushButton& ApplyButton;        // Cmd_Tab(3)
    PushButton& LockButton;         // Cmd_Tab(4); its tag "1" means locked
    ControlArray<Label> lbl_Resize; // 0 the original size, 1 the new one
};

// What "Apply" needs of the view: fit the resized picture to it.
using RefitView = std::function<void()>;

class ResizePanel {
  public:
    ResizePanel(Editor& editor, ResizePanelControls controls, HistoryPanel& historyPanel,
                const IconStore& icons, Messages& messages, RefitView refitView);

    void RadioButton_Resize_Click(int mode);
    void ResetToOriginalSize(); // the mode of a picture just opened, its button marked

    void PictureSizeChanged(); // by a turn, by undo, by another picture: lines and fields tell the present
    void SettleButtons();      // "Apply" and the lock follow the mode, also where all controls went on
    void Combo_ResizePredefined_Click();
    void UpDown_ImageWidth_Change();
    void UpDown_ImageHeight_Change();
    void UpDown_ResizePercent_Change();
    void Txt_ResizePercent_Change();
    void Lock_Click();
    void Apply_Click();

    // Whether the field keeps the typed key: digits, backspace, and one "-" at the start.
    static bool FilterNumericKey(const EditField& box, int key);

    std::int16_t NewWidth = 0;
    std::int16_t NewHeight = 0;

  private:
    void BindFields();
    void BindField(EditField& box, UpDown& spinner);
    void DisableField(EditField& box, UpDown& spinner);
    void EnableField(EditField& box, UpDown& spinner);
    void ClearList();
    void Box_Change(EditField& box, const UpDown& spinner, const SlotTable<std::int16_t>& side);
    void Box_LostFocus(EditField& box, UpDown& spinner);
    void SettleTyping();               // what was typed counts, as if its field had been left
    void UseSize(const QString& text); // "W,H"
    void UseComputedSize(const QString& text, bool enlarges);
    void UsePercent(std::int16_t percent);
    void ShowNewSize();
    bool MayApply(); // after a message where not
    void ShowSizes();
    std::int16_t PictureWidth() const { return editor_.Document.ImageWidth(kSlot); }
    std::int16_t PictureHeight() const { return editor_.Document.ImageHeight(kSlot); }
    bool IsLocked() const { return controls_.LockButton.Tag() == QStringLiteral("1"); }

    Editor& editor_;
    ResizePanelControls controls_;
    HistoryPanel& historyPanel_;
    const IconStore& icons_;
    Messages& messages_;
    RefitView refitView_;
    int mode_ = 0;            // element of RadioButton_Resize
    bool applying_ = false;   // what changes the size is "Apply" itself
    bool isTooLarge_ = false; // the size asked for last; NewWidth and NewHeight are then those before it
    Events events_;
};

} // namespace pictorel

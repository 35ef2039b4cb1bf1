// The sliders' preview and commit, see LivePreview.h.
#include "panels/LivePreview.h"

#include "controls/FocusKeeper.h"
#include "platform/CarryOn.h"
#include "platform/Numbers.h"
#include "platform/PumpEvents.h"

#include <algorithm>

namespace pictorel {
namespace {

constexpr float kBelowSlider = 1100; // twips from the slider's top in its panel to the preview window's top

const SliderRow& RowOf(int slider) {
    return SliderCatalogue()[static_cast<std::size_t>(slider)];
}

QString PreviewTitle(int slider, const QString& caption) {
    if (slider == kSharpenBlurSlider) {
        return QStringLiteral("Sharpen / Blur");
    }
    return slider == kMaximalMinimalSlider ? QStringLiteral("Maximal / Minimal") : caption;
}

} // namespace

LivePreview::LivePreview(Editor& editor, LivePreviewControls controls, PictureControls& pictureControls,
                         HistoryPanel& historyPanel, PreviewWindow& window)
    : editor_(editor),
      controls_(std::move(controls)),
      pictureControls_(pictureControls),
      historyPanel_(historyPanel),
      window_(window) {
    for (int i = 0; i < controls_.Slider_Tab.Count(); ++i) {
        Slider& slider = controls_.Slider_Tab(i);
        slider.SetFollowsWheel(false); // a number that the wheel changed would not be applied
        events_.On(slider, &Slider::Pressed, [this, i] { Slider_Tab_MouseDown(i); });
        events_.On(slider, &Slider::Changed, [this, i] { Slider_Tab_Change(i); });
        events_.On(slider, &Slider::Released, [this, i] { Slider_Tab_MouseUp(i); });
        events_.On(slider, &Slider::Cancelled, [this, i] { Slider_Tab_Cancelled(i); });
    }
}

void LivePreview::PlaceWindow(int slider) {
    CarryOn(
        [&] {
            PreviewWindowTop = RoundHalfEven(WindowPosition().second + controls_.TabControl_Effects.Top() +
                                             controls_.Slider_Tab(slider).Top() + kBelowSlider);
        },
        [&] {
            PreviewWindowLeft = RoundHalfEven(WindowPosition().first + controls_.TabControl_Effects.Left());
        });
}

void LivePreview::Slider_Tab_MouseDown(int slider) {
    if (!editor_.Document.LivePreviewMode) {
        return;
    }
    const Editor::Command command(editor_);
    if (!std::exchange(trying_, true)) {
        modifiedBefore_ = editor_.Document.ImageModified(kSlot);
    }
    PlaceWindow(slider);
    CarryOn(
        [&] {
            if (editor_.Document.PreviewOutdated) {
                editor_.ReducedCopy.UpdatePreviewImage(kSlot);
                editor_.Document.PreviewOutdated = false;
            }
        },
        [&] {
            if (!window_.IsShown()) {
                window_.Unload(); // keys may have loaded it for another slider or picture
            }
        },
        [&] { editor_.ReducedCopy.ShowImagePreview(editor_.ReducedCopy.FileName()); },
        [&] { editor_.ReducedCopy.Prepare(pictorel::RowOf(RowOf(slider).operation)); },
        [&] { window_.SetTitle(PreviewTitle(slider, controls_.lbl_SliderName(slider).Caption())); },
        [&] { window_.ShowModeless(); },
        [&] {
            Announce(QObject::tr("%1, preview")
                         .arg(PreviewTitle(slider, controls_.lbl_SliderName(slider).Caption())));
        });
}

void LivePreview::Slider_Tab_Change(int slider) {
    if (slider < 0 || slider >= kSliderCount) {
        return;
    }
    if (!std::exchange(trying_, true)) {
        modifiedBefore_ = editor_.Document.ImageModified(kSlot);
    }
    WriteValueText(slider);
    editor_.ApplyImageOperation(
        kSlot, static_cast<std::int32_t>(RowOf(slider).operation), true,
        GatherParameters(slider, [this](int i) { return controls_.Slider_Tab(i).Value(); }));
    window_.RepaintNow(); // each value is seen before the next one is handled
    if (!window_.IsShown()) {
        ShowPending(); // keys changed it, and nothing has applied it yet
    }
}

void LivePreview::WriteValueText(int slider) {
    Label& value = controls_.lbl_SliderTab(slider);
    value.SetCaption(SliderValueText(slider, controls_.Slider_Tab(slider).Value()));
    value.RepaintNow();
}

// The slider has gone back to where it was: nothing of the press or of the keys remains.
void LivePreview::Slider_Tab_Cancelled(int slider) {
    CarryOn([&] { window_.Unload(); }, [&] { WriteValueText(slider); }, //
            [&] { ShowPending(); },
            [&] { Announce(QObject::tr("%1, given up").arg(controls_.lbl_SliderName(slider).Caption())); },
            [&] {
                if (std::exchange(trying_, false)) {
                    editor_.SetImageModified(modifiedBefore_);
                }
            });
}

void LivePreview::Slider_Tab_MouseUp(int slider) {
    const FocusKeeper focus(controls_.Slider_Tab(slider));
    const Editor::Command command(editor_);
    CarryOn([&] { pictureControls_.SetEditingEnabled(false); }, //
            [&] { Progress(0); },                               //
            [&] { controls_.ProgressBarControl.SetVisible(true); });
    if (editor_.Document.LivePreviewMode) {
        Commit(slider);
    }
    CarryOn([&] { Progress(7); },                                   //
            [&] { editor_.ReducedCopy.UpdatePreviewImage(kSlot); }, //
            [&] { editor_.Document.PreviewOutdated = false; },      //
            [&] { Progress(8); },                                   //
            [&] { controls_.ProgressBarControl.SetVisible(false); },
            [&] { pictureControls_.SetEditingEnabled(true); }, //
            [&] { historyPanel_.UpdateUndoRedoButtons(); });
}

void LivePreview::Commit(int slider) {
    trying_ = false;
    if (!modifiedBefore_) {
        CarryOn([&] { editor_.SetImageModified(false); }); // should the operation fail
    }
    CarryOn([&] { window_.Unload(); },       //
            [] { PaintPendingEvents(); },    //
            [&] { Progress(1); },            //
            [&] { WriteValueText(slider); }, //
            [&] { editor_.Document.LivePreviewMode = false; },
            [&] {
                const auto valueOf = [this](int i) { return controls_.Slider_Tab(i).Value(); };
                if (editor_.Commit(controls_.lbl_SliderName(slider).Caption(), RowOf(slider).operation,
                                   GatherParameters(slider, valueOf))) {
                    const History& states = editor_.History.States();
                    edits_[static_cast<std::size_t>(slider)] = {states.State(states.Active()).id,
                                                                valueOf(slider)};
                }
            },
            [&] { editor_.Document.LivePreviewMode = true; }, //
            [&] { ShowPending(); }, [&] { Progress(6); });
}

void LivePreview::Progress(int value) {
    controls_.ProgressBarControl.setValue(value);
    controls_.ProgressBarControl.RepaintNow();
}

bool LivePreview::IsPending(int slider) const {
    const LastEdit& edit = edits_[static_cast<std::size_t>(slider)];
    const int value = controls_.Slider_Tab(slider).Value();
    return value != RowOf(slider).defaultValue &&
           (edit.value != value || !editor_.History.States().IsApplied(edit.state));
}

void LivePreview::HistoryChanged() {
    trying_ = false; // what it was tried on is another picture
    ShowPending();
}

void LivePreview::ShowPending() {
    for (int i = 0; i < kSliderCount; ++i) {
        LastEdit& edit = edits_[static_cast<std::size_t>(i)];
        const History& states = editor_.History.States();
        const bool isThere = std::any_of(states.States().begin(), states.States().end(),
                                         [&](const HistoryState& state) { return state.id == edit.state; });
        if (!isThere && !states.IsApplied(edit.state)) {
            edit = {}; // it was dropped, and cannot come back
        }
        const bool pending = IsPending(i);
        controls_.Slider_Tab(i).SetPending(pending);
        controls_.lbl_SliderTab(i).SetDimmed(pending);
    }
}

} // namespace pictorel

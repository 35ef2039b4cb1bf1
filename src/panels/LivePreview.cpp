// The sliders' preview and commit, see LivePreview.h.
#include "panels/LivePreview.h"

#include "editor/SliderCatalogue.h"
#include "platform/CarryOn.h"
#include "platform/Numbers.h"
#include "platform/PumpEvents.h"

#include <utility>

namespace pictorel {
namespace {

constexpr PictureSlot kSlot = 0;
constexpr float kBelowSlider = 1100; // twips from the slider's top in its panel to the preview window's top

QString PreviewTitle(int slider, const QString& caption) {
    if (slider == kSharpenBlurSlider) {
        return QStringLiteral("Sharpen / Blur");
    }
    return slider == kMaximalMinimalSlider ? QStringLiteral("Maximal / Minimal") : caption;
}

} // namespace

LivePreview::LivePreview(Image_Mods& document, LivePreviewControls controls, OperationDispatcher& dispatcher,
                         ReducedCopy& reducedCopy, EditHistory& history, EditorServices& services,
                         PreviewWindow& window)
    : document_(document),
      controls_(std::move(controls)),
      dispatcher_(dispatcher),
      reducedCopy_(reducedCopy),
      history_(history),
      services_(services),
      window_(window) {
    for (int i = 0; i < controls_.Slider_Tab.Count(); ++i) {
        Slider& slider = controls_.Slider_Tab(i);
        events_.On(slider, &Slider::Pressed, [this, i] { Slider_Tab_MouseDown(i); });
        events_.On(slider, &Slider::Changed, [this, i] { Slider_Tab_Change(i); });
        events_.On(slider, &Slider::Released, [this, i] { Slider_Tab_MouseUp(i); });
        events_.On(slider, &Slider::Cancelled, [this, i] { Slider_Tab_Cancelled(i); });
    }
}

void LivePreview::Slider_Tab_MouseDown(int slider) {
    if (!document_.LivePreviewMode) {
        return;
    }
    CarryOn(
        [&] {
            const float top = WindowPosition().second + controls_.TabControl_Effects.Top() +
                              controls_.Slider_Tab(slider).Top() + kBelowSlider;
            PreviewWindowTop = RoundHalfEven(top);
        },
        [&] {
            PreviewWindowLeft = RoundHalfEven(WindowPosition().first + controls_.TabControl_Effects.Left());
        },
        [&] {
            if (PreviewOutdated) {
                services_.UpdatePreviewImage(kSlot);
                PreviewOutdated = false;
            }
        },
        [&] {
            if (!window_.IsShown()) {
                window_.Unload(); // keyboard steps may have loaded it for another slider or picture
            }
        },
        [&] { reducedCopy_.ShowImagePreview(reducedCopy_.FileName(), window_.View()); },
        [&] { window_.SetTitle(PreviewTitle(slider, controls_.lbl_SliderName(slider).Caption())); },
        [&] { window_.ShowModeless(); });
}

void LivePreview::Slider_Tab_Change(int slider) {
    if (slider < 0 || slider >= kSliderCount) {
        return;
    }
    WriteValueText(slider);
    const OperationParameters parameters =
        GatherParameters(slider, [this](int i) { return controls_.Slider_Tab(i).Value(); });
    const auto code =
        static_cast<std::int32_t>(SliderCatalogue()[static_cast<std::size_t>(slider)].operation);
    dispatcher_.ApplyImageOperation(kSlot, code, document_.LivePreviewMode, parameters.value1,
                                    parameters.value2, parameters.value3);
    if (document_.LivePreviewMode) {
        window_.RepaintNow(); // each value is seen before the next one is handled
    }
}

void LivePreview::WriteValueText(int slider) {
    Label& value = controls_.lbl_SliderTab(slider);
    value.SetCaption(SliderValueText(slider, controls_.Slider_Tab(slider).Value()));
    value.RepaintNow();
}

// The slider has gone back to where it was pressed: nothing of the press remains.
void LivePreview::Slider_Tab_Cancelled(int slider) {
    CarryOn([&] { window_.Unload(); }, [&] { WriteValueText(slider); });
}

void LivePreview::Slider_Tab_MouseUp(int slider) {
    CarryOn([&] { services_.SetEditingEnabled(false); }, //
            [&] { Progress(0); },                        //
            [&] { controls_.ProgressBarControl.SetVisible(true); });
    if (document_.LivePreviewMode) {
        Commit(slider);
    }
    CarryOn([&] { Progress(7); },                                               //
            [&] { services_.UpdatePreviewImage(kSlot); }, [&] { Progress(8); }, //
            [&] { controls_.ProgressBarControl.SetVisible(false); },
            [&] { services_.SetEditingEnabled(true); },
            // Disabling the slider took the keyboard focus from it.
            [&] { controls_.Slider_Tab(slider).setFocus(); },
            [&] {
                EditHistory::UpdateUndoRedoButtons(controls_.UndoButton, controls_.RedoButton,
                                                   controls_.HistoryList);
            });
}

void LivePreview::Commit(int slider) {
    CarryOn([&] { window_.Unload(); }, //
            [] { PumpEvents(); },      //
            [&] { Progress(1); },      //
            [&] { document_.LivePreviewMode = false; }, [&] { Slider_Tab_Change(slider); },
            [&] { document_.LivePreviewMode = true; }, //
            [&] { Progress(5); },
            [&] {
                history_.AddHistoryEntry(controls_.lbl_SliderName(slider).Caption(), kSlot,
                                         controls_.HistoryList);
            },
            [&] { Progress(6); });
}

void LivePreview::Progress(int value) {
    controls_.ProgressBarControl.setValue(value);
    controls_.ProgressBarControl.RepaintNow();
}

} // namespace pictorel

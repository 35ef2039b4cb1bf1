// Zoom and scrolling, see ZoomScroll.h.
#include "view/ZoomScroll.h"

#include "platform/CarryOn.h"
#include "platform/Numbers.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace pictorel {
namespace {

constexpr double kSmallestZoom = 0.01;
constexpr double kLargestZoom = 10.0;
constexpr int kActualSize = 100; // percent

int RoundDown(double value) {
    return RoundHalfEven(std::floor(value));
}

// Down to a whole percent. 0.29 * 100 is a hair below 29 in binary: what the slider set reads the same again.
int WholePercent(double zoom) {
    constexpr double kHair = 1e-9;
    return RoundDown(zoom * 100 + kHair);
}

QString PercentText(int percent) {
    return QStringLiteral("%1%").arg(percent);
}

} // namespace

ZoomScroll::ZoomScroll(Editor& editor, ImageView& view, ZoomScrollControls controls)
    : editor_(editor), view_(view), controls_(std::move(controls)) {
    for (int i = 0; i < controls_.Slider_ImageZoom.Count(); ++i) {
        events_.On(controls_.Cmd_ZoomIn(i), &PushButton::clicked, [this, i] { Cmd_ZoomIn_Click(i); });
        events_.On(controls_.Cmd_ZoomOut(i), &PushButton::clicked, [this, i] { Cmd_ZoomOut_Click(i); });
        events_.On(controls_.Cmd_ZoomFit(i), &PushButton::clicked, [this, i] { Cmd_ZoomFit_Click(i); });
        events_.On(controls_.Cmd_ActualSize(i), &PushButton::clicked, [this, i] { Cmd_ActualSize_Click(i); });
        events_.On(controls_.Slider_ImageZoom(i), &Slider::Changed,
                   [this, i](int) { Slider_ImageZoom_Change(i); });
        events_.On(controls_.Slider_ImageZoom(i), &Slider::Released,
                   [this, i] { Slider_ImageZoom_MouseUp(i); });
        events_.On(controls_.Slider_ImageZoom(i), &Slider::Cancelled, [this, i] {
            Slider_ImageZoom_Change(i);
            Slider_ImageZoom_MouseUp(i);
        });
        for (ScrollBar* const bar : {&controls_.ScrollBar_ImageX(i), &controls_.ScrollBar_ImageY(i)}) {
            events_.On(*bar, &ScrollBar::valueChanged, [this, i](int) { ScrollBar_Change(i); });
        }
    }
}

int ZoomScroll::OffsetX(PictureSlot slot) const {
    return RoundDown(view_.CentreX() - 0.5 * editor_.Document.ImageWidth(slot));
}

int ZoomScroll::OffsetY(PictureSlot slot) const {
    return RoundDown(view_.CentreY() - 0.5 * editor_.Document.ImageHeight(slot));
}

void ZoomScroll::ScrollImageView(PictureSlot slot) {
    const auto wasMoved = [](const ScrollBar& bar, int offset) {
        return bar.value() != std::clamp(offset, bar.minimum(), bar.maximum());
    };
    CarryOn([&] { view_.SetRedraw(false); },
            [&] {
                const ScrollBar& bar = controls_.ScrollBar_ImageX(slot);
                if (wasMoved(bar, OffsetX(slot))) {
                    view_.SetCentreX(0.5 * editor_.Document.ImageWidth(slot) + bar.value());
                }
            },
            [&] {
                const ScrollBar& bar = controls_.ScrollBar_ImageY(slot);
                if (wasMoved(bar, OffsetY(slot))) {
                    view_.SetCentreY(0.5 * editor_.Document.ImageHeight(slot) + bar.value());
                }
            },
            [&] { view_.SetRedraw(true); });
}

void ZoomScroll::UpdateZoomView(PictureSlot slot) {
    ZoomControlsSyncing = true;
    CarryOn(
        [&] { controls_.ScrollBar_ImageX(slot).setValue(OffsetX(slot)); },
        [&] { controls_.ScrollBar_ImageY(slot).setValue(OffsetY(slot)); },
        [&] { controls_.Slider_ImageZoom(slot).SetValue(WholePercent(view_.Zoom())); },
        [&] {
            controls_.lbl_ZoomPercent(slot).SetCaption(PercentText(controls_.Slider_ImageZoom(slot).Value()));
            controls_.lbl_ZoomPercent(slot).RepaintNow();
        });
    ZoomControlsSyncing = false;
}

void ZoomScroll::ClampZoom() {
    const double zoom = std::clamp(view_.Zoom(), kSmallestZoom, kLargestZoom);
    if (zoom != view_.Zoom()) {
        view_.SetZoom(zoom);
    }
}

void ZoomScroll::Cmd_ZoomIn_Click(int index) {
    CarryOn([&] { view_.ZoomIn(); }, [&] { ClampZoom(); },
            [&] { UpdateZoomView(static_cast<PictureSlot>(index)); }, [&] { MarkPreviewOutdated(); });
}

void ZoomScroll::Cmd_ZoomOut_Click(int index) {
    CarryOn([&] { view_.ZoomOut(); }, [&] { ClampZoom(); },
            [&] { UpdateZoomView(static_cast<PictureSlot>(index)); }, [&] { MarkPreviewOutdated(); });
}

void ZoomScroll::Cmd_ZoomFit_Click(int index) {
    CarryOn([&] { view_.Fit(); }, [&] { ClampZoom(); },
            [&] { UpdateZoomView(static_cast<PictureSlot>(index)); }, [&] { MarkPreviewOutdated(); });
}

void ZoomScroll::Cmd_ActualSize_Click(int index) {
    CarryOn([&] { controls_.Slider_ImageZoom(0).SetValue(kActualSize); }, //
            [&] { Slider_ImageZoom_Change(index); }, [&] { MarkPreviewOutdated(); });
}

void ZoomScroll::Slider_ImageZoom_Change(int index) {
    if (ZoomControlsSyncing) {
        return;
    }
    CarryOn(
        [&] {
            controls_.lbl_ZoomPercent(index).SetCaption(
                PercentText(controls_.Slider_ImageZoom(index).Value()));
            controls_.lbl_ZoomPercent(index).RepaintNow();
        },
        [&] { view_.SetZoom(controls_.Slider_ImageZoom(index).Value() / 100.0); },
        [&] { ScrollImageView(static_cast<PictureSlot>(index)); }, [&] { MarkPreviewOutdated(); });
}

void ZoomScroll::Slider_ImageZoom_MouseUp(int /*index*/) {
    const Editor::Command command(editor_);
    CarryOn([&] { editor_.ReducedCopy.UpdatePreviewImage(kSlot); },
            [&] { editor_.Document.PreviewOutdated = false; });
}

void ZoomScroll::ScrollBar_Change(int index) {
    if (ZoomControlsSyncing) {
        return;
    }
    CarryOn([&] { ScrollImageView(static_cast<PictureSlot>(index)); }, [&] { MarkPreviewOutdated(); });
}

void ZoomScroll::CentreAxes(bool across, bool down) {
    if (across) {
        view_.SetCentreX(0.5 * editor_.Document.ImageWidth(kSlot));
    }
    if (down) {
        view_.SetCentreY(0.5 * editor_.Document.ImageHeight(kSlot));
    }
    UpdateZoomView(kSlot);
}

void ZoomScroll::ImageView_Changed(int index) {
    CarryOn([&] { UpdateZoomView(static_cast<PictureSlot>(index)); }, [&] { MarkPreviewOutdated(); });
}

} // namespace pictorel

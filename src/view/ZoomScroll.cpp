// Zoom and scrolling, see ZoomScroll.h.
#include "view/ZoomScroll.h"

#include "platform/CarryOn.h"
#include "platform/Numbers.h"
#include "platform/PumpEvents.h"

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

ZoomScroll::ZoomScroll(Image_Mods& document, ZoomScrollControls controls, PreviewCopy preview)
    : document_(document), controls_(std::move(controls)), preview_(std::move(preview)) {
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

void ZoomScroll::ScrollImageView(PictureSlot slot) {
    CarryOn([&] { document_.Views(slot).SetRedraw(false); },
            [&] {
                document_.Views(slot).SetCentreX(0.5 * document_.ImageWidth(slot) +
                                                 controls_.ScrollBar_ImageX(slot).value());
            },
            [&] {
                document_.Views(slot).SetCentreY(0.5 * document_.ImageHeight(slot) +
                                                 controls_.ScrollBar_ImageY(slot).value());
            },
            [&] { document_.Views(slot).SetZoom(controls_.Slider_ImageZoom(slot).Value() / 100.0); },
            [&] { document_.Views(slot).SetRedraw(true); });
}

void ZoomScroll::UpdateZoomView(PictureSlot slot) {
    ZoomControlsSyncing = true;
    CarryOn(
        [&] {
            controls_.ScrollBar_ImageX(slot).setValue(
                RoundDown(document_.Views(slot).CentreX() - 0.5 * document_.ImageWidth(slot)));
        },
        [&] {
            controls_.ScrollBar_ImageY(slot).setValue(
                RoundDown(document_.Views(slot).CentreY() - 0.5 * document_.ImageHeight(slot)));
        },
        [&] { controls_.Slider_ImageZoom(slot).SetValue(WholePercent(document_.Views(slot).Zoom())); },
        [&] {
            controls_.lbl_ZoomPercent(slot).SetCaption(PercentText(controls_.Slider_ImageZoom(slot).Value()));
            controls_.lbl_ZoomPercent(slot).RepaintNow();
        });
    ZoomControlsSyncing = false;
}

void ZoomScroll::Cmd_ZoomIn_Click(int index) {
    const auto slot = static_cast<PictureSlot>(index);
    CarryOn([&] { document_.Views(slot).ZoomIn(); },
            [&] {
                if (document_.Views(slot).Zoom() > kLargestZoom) {
                    document_.Views(slot).SetZoom(kLargestZoom);
                }
            },
            [&] { UpdateZoomView(slot); });
}

void ZoomScroll::Cmd_ZoomOut_Click(int index) {
    const auto slot = static_cast<PictureSlot>(index);
    CarryOn([&] { document_.Views(slot).ZoomOut(); },
            [&] {
                if (document_.Views(slot).Zoom() < kSmallestZoom) {
                    document_.Views(slot).SetZoom(kSmallestZoom);
                }
            },
            [&] { UpdateZoomView(slot); });
}

void ZoomScroll::Cmd_ZoomFit_Click(int index) {
    const auto slot = static_cast<PictureSlot>(index);
    CarryOn([&] { document_.Views(slot).Fit(); }, //
            [&] { UpdateZoomView(slot); }, [&] { preview_.SetOutdated(true); });
}

void ZoomScroll::Cmd_ActualSize_Click(int index) {
    CarryOn([&] { controls_.Slider_ImageZoom(0).SetValue(kActualSize); }, //
            [&] { Slider_ImageZoom_Change(index); }, [&] { preview_.SetOutdated(true); });
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
        [&] { ScrollImageView(static_cast<PictureSlot>(index)); });
}

void ZoomScroll::Slider_ImageZoom_MouseUp(int /*index*/) {
    CarryOn([&] { preview_.Rebuild(); }, [&] { preview_.SetOutdated(false); });
}

void ZoomScroll::ScrollBar_Change(int index) {
    if (ZoomControlsSyncing) {
        return;
    }
    CarryOn([] { PumpEvents(); }, //
            [&] { ScrollImageView(static_cast<PictureSlot>(index)); }, [&] { preview_.SetOutdated(true); });
}

void ZoomScroll::CentreAxes(bool across, bool down) {
    ZoomControlsSyncing = true;
    CarryOn(
        [&] { controls_.ScrollBar_ImageX(0).setValue(across ? 0 : controls_.ScrollBar_ImageX(0).value()); },
        [&] { controls_.ScrollBar_ImageY(0).setValue(down ? 0 : controls_.ScrollBar_ImageY(0).value()); });
    ZoomControlsSyncing = false;
}

void ZoomScroll::ImageView_Changed(int index) {
    CarryOn([&] { UpdateZoomView(static_cast<PictureSlot>(index)); }, [&] { preview_.SetOutdated(true); });
}

} // namespace pictorel

// The drawing state of a metafile being played: what clips, see DeviceContext.h.
#include "picture/metafile/canvas/DeviceContext.h"
#include "picture/metafile/canvas/PathRegion.h"

namespace pictorel::metafile {

QRegion DeviceContext::RegionOf(const QPainterPath& onCanvas) {
    if (!surface_.WantsPixels()) {
        return {}; // nothing is clipped where only extents are noted
    }
    const QRect bounds = surface_.Bounds();
    surface_.Spend(RegionWork(onCanvas, bounds));
    return surface_.IsExhausted() ? QRegion() : RegionOfPath(onCanvas, bounds);
}

void DeviceContext::Clip(const QPainterPath& onCanvas, Combine combine) {
    Clip(RegionOf(onCanvas), combine);
}

void DeviceContext::Clip(const QRegion& onCanvas, Combine combine) {
    const QRegion before = state_.clip.value_or(surface_.Bounds());
    constexpr double kPerRectangle = 50;
    surface_.Spend((before.rectCount() + onCanvas.rectCount()) * kPerRectangle);
    if (surface_.IsExhausted()) {
        return;
    }
    switch (combine) {
        case Combine::And:
            state_.clip = before & onCanvas;
            break;
        case Combine::Or:
            state_.clip = before | onCanvas;
            break;
        case Combine::Xor:
            state_.clip = before ^ onCanvas;
            break;
        case Combine::Difference:
            state_.clip = before - onCanvas;
            break;
        case Combine::Copy:
            state_.clip = onCanvas;
            break;
    }
    clipChanged_ = true;
}

void DeviceContext::SetClip(const std::optional<QRegion>& region) {
    state_.clip = region;
    clipChanged_ = true;
}

void DeviceContext::OffsetClip(QPointF offset) {
    if (!state_.clip) {
        return;
    }
    state_.clip->translate((OnCanvas(offset) - OnCanvas(QPointF())).toPoint());
    *state_.clip &= surface_.Bounds();
    clipChanged_ = true;
}

void DeviceContext::MoveClipToMeta() {
    if (state_.clip) {
        state_.metaClip = state_.metaClip ? *state_.metaClip & *state_.clip : *state_.clip;
        ClearClip();
    }
}

} // namespace pictorel::metafile

// Derived picture sizes, see ResizeArithmetic.h.
#include "editor/ResizeArithmetic.h"

#include "platform/CarryOn.h"
#include "platform/Numbers.h"

#include <QStringList>

namespace pictorel {
namespace {

QString Joined(std::int16_t width, std::int16_t height) {
    return QStringLiteral("%1,%2").arg(width).arg(height);
}

std::int16_t Share(std::int16_t side, std::int16_t percent) {
    std::int16_t result = 0;
    CarryOn([&] { result = ToInt16(side / 100.0 * percent); });
    return result;
}

std::int16_t InProportion(std::int16_t given, std::int16_t givenSide0, std::int16_t wantedSide0) {
    std::int16_t result = 0;
    CarryOn([&] { result = ToInt16(static_cast<double>(given) / givenSide0 * wantedSide0); });
    return result;
}

} // namespace

QString ComputeResizeSize(std::int16_t width0, std::int16_t height0, std::int16_t width, std::int16_t height,
                          bool byPercent, std::int16_t percent) {
    if (byPercent) {
        return Joined(Share(width0, percent), Share(height0, percent));
    }
    QString result;
    if (height == kDeriveSide) {
        result = Joined(width, InProportion(width, width0, height0));
    }
    if (width == kDeriveSide) {
        result = Joined(InProportion(height, height0, width0), height);
    }
    return result;
}

PictureSize SplitSize(const QString& text) {
    const QStringList parts = text.split(u',');
    if (parts.size() != 2) {
        throw NumberError("Not a size: " + text.toStdString());
    }
    return {ToInt16(parts[0]), ToInt16(parts[1])};
}

} // namespace pictorel

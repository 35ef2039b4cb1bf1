// Places a picture on a page, see PagePlacement.h.
#include "commands/print/PagePlacement.h"

#include <algorithm>

namespace pictorel {

QPageLayout::Orientation OrientationFor(const QSize& picture) {
    return picture.width() > picture.height() ? QPageLayout::Landscape : QPageLayout::Portrait;
}

QRectF PlaceOnPage(const QSize& picture, const QSizeF& page, double dotsPerInch, bool enlarge) {
    if (picture.isEmpty() || page.isEmpty()) {
        return {};
    }
    const double fit = std::min(page.width() / picture.width(), page.height() / picture.height());
    const double scale = enlarge ? fit : std::min(fit, dotsPerInch / kFewestDotsPerInch);
    const QSizeF size = QSizeF(picture) * scale;
    return {QPointF((page.width() - size.width()) / 2, (page.height() - size.height()) / 2), size};
}

} // namespace pictorel

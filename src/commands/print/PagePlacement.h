// Where a picture goes on a sheet of paper, and which way round the sheet is.
#pragma once

#include <QPageLayout>
#include <QRectF>
#include <QSize>

namespace pictorel {

// A picture larger than this many dots an inch is the rule on paper; a smaller one is not blown up beyond it
// unless the person says so.
inline constexpr double kFewestDotsPerInch = 100;

// The orientation that lets the picture be larger.
QPageLayout::Orientation OrientationFor(const QSize& picture);

// The rectangle of a page of `page` device dots, `dotsPerInch` of them to the inch, that the picture fills:
// centred, its proportions kept, as large as the page lets it be, but not beyond kFewestDotsPerInch unless
// `enlarge`. Empty for an empty picture or page.
QRectF PlaceOnPage(const QSize& picture, const QSizeF& page, double dotsPerInch, bool enlarge);

} // namespace pictorel

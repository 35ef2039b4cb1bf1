// The brightest and darkest of a square against the definition, exactly.
#include "picture/engine/Filters.h"
#include "support/Pictures.h"

#include <algorithm>

namespace pictorel::engine {
namespace {

using test::Alpha;
using test::At;
using test::Draw;
using test::Pixel;
using test::Random;
using test::SamePixels;
using test::Size;

// Invisible pixels do not take part in a picture that has alpha.
PixelArray ExactSquare(const PixelArray& source, int radius, bool brightest) {
    PixelArray result = Draw({source.Width(), source.Height()}, [&](int x, int y) {
        Pixel found = At(source, x, y);
        for (int j = std::max(y - radius, 0); j <= std::min(y + radius, source.Height() - 1); ++j) {
            for (int i = std::max(x - radius, 0); i <= std::min(x + radius, source.Width() - 1); ++i) {
                const Pixel other = At(source, i, j);
                for (std::size_t k = 0; k < 3 && !(source.HasAlpha() && other[3] == 0); ++k) {
                    found[k] = brightest ? std::max(found[k], other[k]) : std::min(found[k], other[k]);
                }
            }
        }
        return found;
    });
    result.SetHasAlpha(source.HasAlpha());
    return result;
}

// What cannot be seen cannot differ.
PixelArray WithoutInvisible(PixelArray picture) {
    std::uint8_t* const rows = picture.WritableRows();
    for (int y = 0; y < picture.Height(); ++y) {
        for (int x = 0; x < picture.Width(); ++x) {
            std::uint8_t* const p = rows + y * picture.Stride() + static_cast<std::ptrdiff_t>(x) * 4;
            if (p[3] == 0) {
                std::fill_n(p, 3, std::uint8_t{0});
            }
        }
    }
    return picture;
}

TEST(RankFilters, FindTheExtremesOfTheSquare) {
    for (const Size size : {Size{1, 1}, {1, 9}, {9, 1}, {2, 2}, {7, 5}, {33, 17}, {259, 131}}) {
        for (const Alpha alpha : {Alpha::None, Alpha::Random}) {
            const PixelArray source = Random(size, alpha);
            for (int radius = -5; radius <= 5; ++radius) {
                const PixelArray most = ExactSquare(source, std::abs(radius), radius > 0);
                const PixelArray least = ExactSquare(source, std::abs(radius), radius < 0);
                EXPECT_TRUE(
                    SamePixels(WithoutInvisible(MaximumFilter(source, radius)), WithoutInvisible(most)))
                    << "maximum " << radius << " at " << size.width << " x " << size.height;
                EXPECT_TRUE(
                    SamePixels(WithoutInvisible(MinimumFilter(source, radius)), WithoutInvisible(least)))
                    << "minimum " << radius << " at " << size.width << " x " << size.height;
            }
        }
    }
}

TEST(RankFilters, NeutralRadiusGivesTheSourceItself) {
    const PixelArray source = Random({33, 17});
    EXPECT_TRUE(MaximumFilter(source, 0).SharesPixelsWith(source));
    EXPECT_TRUE(MinimumFilter(source, 0).SharesPixelsWith(source));
}

TEST(RankFilters, MixOnReducedCopies) {
    const PixelArray source = Random({40, 30});
    PixelArray reduced = source;
    reduced.SetReduction(0.5);
    EXPECT_TRUE(SamePixels(MaximumFilter(reduced, 4), MaximumFilter(source, 2)));
    reduced.SetReduction(0.25);
    const PixelArray mixed = MaximumFilter(reduced, 5); // a quarter of the way from radius 1 to radius 2
    const PixelArray inner = MaximumFilter(source, 1);
    const PixelArray outer = MaximumFilter(source, 2);
    for (int x = 0; x < 40; ++x) {
        const int from = At(inner, x, 9)[1];
        const int to = At(outer, x, 9)[1];
        EXPECT_NEAR(At(mixed, x, 9)[1], from + 0.25 * (to - from), 0.5001);
    }
}

} // namespace
} // namespace pictorel::engine

// The loop over bands of rows: every row once, and errors arrive where the loop was started.
#include "picture/ForEachBand.h"
#include "picture/ImagingError.h"

#include <gtest/gtest.h>

#include <atomic>
#include <vector>

namespace pictorel {
namespace {

TEST(ForEachBand, VisitsEveryRowOnce) {
    struct Case {
        int rows;
        std::size_t bytesPerRow;
        bool divided;
    };
    const auto cases = {
        Case{0, 4096, false},    Case{-3, 4096, false},  Case{1, std::size_t{1} << 40, false},
        Case{7, 0, false},       Case{32767, 4, false},  Case{7, std::size_t{1} << 20, true},
        Case{1001, 65536, true}, Case{4999, 4001, true}, Case{32767, 131068, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.rows) + " rows of " + std::to_string(c.bytesPerRow) + " bytes");
        std::vector<std::atomic<int>> visits(static_cast<std::size_t>(std::max(c.rows, 0)));
        std::atomic<int> bands = 0;
        ForEachBand(c.rows, c.bytesPerRow, [&](int first, int end) {
            ++bands;
            ASSERT_LT(first, end);
            for (int row = first; row < end; ++row) {
                ++visits.at(static_cast<std::size_t>(row));
            }
        });
        for (std::size_t row = 0; row < visits.size(); ++row) {
            ASSERT_EQ(visits[row], 1) << "row " << row;
        }
        EXPECT_EQ(bands > 1, c.divided);
    }
}

TEST(ForEachBand, RethrowsABandsErrorInTheCaller) {
    for (const std::size_t bytesPerRow : {std::size_t{4}, std::size_t{1} << 20}) {
        std::atomic<int> running = 0;
        const auto body = [&](int first, int end) {
            ++running;
            const bool fails = first <= 50 && 50 < end;
            --running;
            if (fails) {
                throw ImagingError(ImagingFailure::InvalidValue, "row 50");
            }
        };
        try {
            ForEachBand(101, bytesPerRow, body);
            FAIL() << "the error is lost";
        } catch (const ImagingError& error) {
            EXPECT_STREQ(error.what(), "row 50");
        }
        EXPECT_EQ(running, 0) << "a band still runs";
    }
}

TEST(ForEachBand, MayBeUsedInsideABand) {
    std::atomic<int> rows = 0;
    ForEachBand(9, std::size_t{1} << 20, [&](int first, int end) {
        ForEachBand(11 * (end - first), std::size_t{1} << 20, [&](int f, int e) { rows += e - f; });
    });
    EXPECT_EQ(rows, 99);
}

} // namespace
} // namespace pictorel

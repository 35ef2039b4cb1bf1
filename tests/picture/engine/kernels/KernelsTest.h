// The fixture of all kernels' tests: what a family's plain loops give, its vectors give on every processor.
#pragma once

#include "support/Pictures.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace pictorel::engine {

class KernelsTest : public ::testing::Test {
  protected:
    // Runs body(name) with each kind of vectors that this processor has, and with none, in turn.
    static void ForEachTarget(const std::function<void(const std::string&)>& body);

    // What work(kernels) returns (pixels or numbers, without what vectors may write beyond what is asked of
    // them) is the same with Kernels::Plain() and with Kernels::Best() on every target.
    template <class Kernels, class Work>
    static void ExpectSame(const std::string& what, const Work& work) {
        const auto plain = work(Kernels::Plain());
        bool hasVectors = false;
        ForEachTarget([&](const std::string& target) {
            hasVectors = hasVectors || &Kernels::Best() != &Kernels::Plain();
            EXPECT_TRUE(IsSame(work(Kernels::Best()), plain)) << what << ", with " << target;
        });
        EXPECT_TRUE(hasVectors) << "the plain loops were compared with themselves";
    }

    // Calls function(in, out, width) for all rows of a picture.
    template <class Function>
    static PixelArray MapRowsOf(const PixelArray& source, const Function& function) {
        PixelArray result = PixelArray::Like(source);
        std::uint8_t* const rows = result.WritableRows();
        for (int y = 0; y < source.Height(); ++y) {
            function(source.Row(y), rows + y * result.Stride(), source.Width());
        }
        return result;
    }

    // Random numbers among which `highest` is frequent.
    template <class Row>
    static Row RandomNumbers(std::size_t count, int lowest, int highest, std::uint32_t seed = 9) {
        Row numbers(count);
        for (auto& number : numbers) {
            seed = seed * 1664525U + 1013904223U;
            const auto range = static_cast<std::uint32_t>(highest - lowest + 1);
            const int value = (seed >> 28) < 5 ? highest : lowest + static_cast<int>((seed >> 8) % range);
            number = static_cast<typename Row::value_type>(value);
        }
        return numbers;
    }

  private:
    static ::testing::AssertionResult IsSame(const PixelArray& a, const PixelArray& b) {
        return test::SamePixels(a, b);
    }

    template <class Number>
    static ::testing::AssertionResult IsSame(const std::vector<Number>& a, const std::vector<Number>& b) {
        if (a.size() != b.size()) {
            return ::testing::AssertionFailure() << a.size() << " numbers instead of " << b.size();
        }
        for (std::size_t i = 0; i < a.size(); ++i) {
            if (a[i] != b[i]) {
                return ::testing::AssertionFailure()
                       << "number " << i << " of " << a.size() << ": " << +a[i] << " instead of " << +b[i];
            }
        }
        return ::testing::AssertionSuccess();
    }
};

} // namespace pictorel::engine

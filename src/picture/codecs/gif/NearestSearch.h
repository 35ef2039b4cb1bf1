// Finds the nearest of up to 256 points.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace pictorel::codecs {

// Points of N whole numbers. No two points, those asked for included, may be further apart than 4000: the
// square of the distance and the number of the point share 32 bits, so that the least of them is found
// without a branch.
template <std::size_t N>
class NearestSearch {
  public:
    using Point = std::array<int, N>;
    static constexpr std::size_t kMostPoints = 256;

    void Add(const Point& point) {
        for (std::size_t k = 0; k < N; ++k) {
            coordinates_[k][count_] = point[k];
        }
        ++count_;
    }

    // The number of the nearest point, the first of several; there has to be one.
    int Nearest(const Point& point) const noexcept {
        std::uint32_t least = std::numeric_limits<std::uint32_t>::max();
        for (std::uint32_t i = 0; i < count_; ++i) {
            std::uint32_t distance = 0;
            for (std::size_t k = 0; k < N; ++k) {
                const int apart = coordinates_[k][i] - point[k];
                distance += static_cast<std::uint32_t>(apart * apart);
            }
            const std::uint32_t candidate = distance << 8 | i;
            least = candidate < least ? candidate : least;
        }
        return static_cast<int>(least & (kMostPoints - 1));
    }

  private:
    std::array<std::array<int, kMostPoints>, N> coordinates_{};
    std::uint32_t count_ = 0;
};

} // namespace pictorel::codecs

// Prints, for every shown slider at five values and each picture given, how alike the preview and the
// committed picture are: of the whole picture, and zoomed in at several places; ends with 1 when a preview
// lies.
#include "editor/AtomicFile.h"
#include "editor/SliderCatalogue.h"
#include "measure/PreviewTruth.h"
#include "picture/codecs/Codec.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <string>

namespace {

using namespace pictorel;

constexpr double kEnough = 0.98;
constexpr double kEnoughForChance = 0.90; // noise and diffuse, where the impression counts
constexpr int kValues = 5;                // minimum, a quarter, the middle, three quarters, maximum

double Bound(Operation operation) {
    return operation == Operation::Noise || operation == Operation::Diffuse ? kEnoughForChance : kEnough;
}

struct Tally {
    double least = 1;
    int lies = 0;
};

// A view of this many device pixels, zoomed in on a place of the picture.
struct Place {
    const char* name;
    double zoom; // 0 shows the whole picture
    double x;    // 0 at the left end of what can be reached by scrolling, 1 at the right
    double y;
};
constexpr int kViewWidth = 1000;
constexpr int kViewHeight = 700;
constexpr std::array<Place, 6> kPlaces{{
    {"whole", 0, 0, 0},
    {"101 %, right of the middle", 1.01, 0.7, 0.4},
    {"150 %, left of the middle", 1.5, 0.3, 0.5},
    {"400 %, lower right", 4, 0.8, 0.7},
    {"400 %, corner", 4, 0, 0},
    {"1000 %, middle", 10, 0.5, 0.5},
}};

ShownPart PartAt(const Place& place, const PixelArray& picture) {
    if (place.zoom == 0) {
        return {};
    }
    const int width = std::min(static_cast<int>(kViewWidth / place.zoom), picture.Width());
    const int height = std::min(static_cast<int>(kViewHeight / place.zoom), picture.Height());
    return {place.zoom, static_cast<int>(place.x * (picture.Width() - width)),
            static_cast<int>(place.y * (picture.Height() - height)), width, height};
}

class Truths {
  public:
    explicit Truths(const PixelArray& picture) : picture_(picture) {
        for (std::size_t i = 0; i < kPlaces.size(); ++i) {
            truths_[i] = std::make_unique<measure::PreviewTruth>(picture, PartAt(kPlaces[i], picture));
        }
    }

    void PrintSlider(int slider, Tally& tally) const {
        const SliderRow& row = SliderCatalogue()[static_cast<std::size_t>(slider)];
        std::array<std::array<double, kValues>, kPlaces.size()> truths{};
        std::array<int, kValues> values{};
        for (int i = 0; i < kValues; ++i) {
            values[i] = row.minimum + (row.maximum - row.minimum) * i / (kValues - 1);
            const PixelArray committed = measure::PreviewTruth::AfterSlider(picture_, slider, values[i]);
            for (std::size_t place = 0; place < kPlaces.size(); ++place) {
                truths[place][i] = truths_[place]->Of(slider, values[i], committed);
            }
        }
        for (std::size_t place = 0; place < kPlaces.size(); ++place) {
            std::printf("%-16.*s %-26s", static_cast<int>(row.caption.size()), row.caption.data(),
                        kPlaces[place].name);
            for (int i = 0; i < kValues; ++i) {
                const bool lies = truths[place][i] < Bound(row.operation);
                std::printf(" %5d: %.4f%c", values[i], truths[place][i], lies ? '!' : ' ');
                tally.lies += lies ? 1 : 0;
                tally.least = std::min(tally.least, truths[place][i]);
            }
            std::printf("\n");
        }
        std::fflush(stdout);
    }

  private:
    const PixelArray& picture_;
    std::array<std::unique_ptr<measure::PreviewTruth>, kPlaces.size()> truths_;
};

} // namespace

int main(int count, char* words[]) {
    if (count < 2) {
        std::fprintf(stderr, "preview_truth PICTURE...\n");
        return 2;
    }
    Tally tally;
    for (int i = 1; i < count; ++i) {
        const auto bytes = ReadWholeFile(words[i]);
        const codecs::Codec* const codec = bytes ? codecs::FindCodecByContent(*bytes) : nullptr;
        if (codec == nullptr) {
            std::fprintf(stderr, "%s is no picture\n", words[i]);
            return 2;
        }
        const PixelArray picture = codec->read(*bytes, {});
        const Truths truths(picture);
        std::printf("%s, %d x %d: structural similarity at each slider's values\n", words[i], picture.Width(),
                    picture.Height());
        for (int slider = 0; slider < kSliderCount; ++slider) {
            if (SliderCatalogue()[static_cast<std::size_t>(slider)].shown) {
                truths.PrintSlider(slider, tally);
            }
        }
    }
    std::printf("least %.4f, below the bound (%.2f; noise and diffuse %.2f): %d\n", tally.least, kEnough,
                kEnoughForChance, tally.lies);
    return tally.lies == 0 ? 0 : 1;
}

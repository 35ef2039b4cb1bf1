// Prints, for every shown slider at five values and each picture given, how alike the preview and the
// committed picture are; ends with 1 when a preview lies.
#include "editor/AtomicFile.h"
#include "editor/SliderCatalogue.h"
#include "measure/PreviewTruth.h"
#include "picture/codecs/Codec.h"

#include <algorithm>
#include <array>
#include <cstdio>
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

void PrintSlider(const measure::PreviewTruth& truths, int slider, Tally& tally) {
    const SliderRow& row = SliderCatalogue()[static_cast<std::size_t>(slider)];
    std::printf("%-16.*s", static_cast<int>(row.caption.size()), row.caption.data());
    for (int i = 0; i < kValues; ++i) {
        const int value = row.minimum + (row.maximum - row.minimum) * i / (kValues - 1);
        const double truth = truths.Of(slider, value);
        const bool lies = truth < Bound(row.operation);
        std::printf(" %5d: %.4f%c", value, truth, lies ? '!' : ' ');
        tally.lies += lies ? 1 : 0;
        tally.least = std::min(tally.least, truth);
    }
    std::printf("\n");
    std::fflush(stdout);
}

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
        const measure::PreviewTruth truths(picture);
        std::printf("%s, %d x %d, preview %d x %d: structural similarity at each slider's values\n", words[i],
                    picture.Width(), picture.Height(), truths.Copy().Width(), truths.Copy().Height());
        for (int slider = 0; slider < kSliderCount; ++slider) {
            if (SliderCatalogue()[static_cast<std::size_t>(slider)].shown) {
                PrintSlider(truths, slider, tally);
            }
        }
    }
    std::printf("least %.4f, below the bound (%.2f; noise and diffuse %.2f): %d\n", tally.least, kEnough,
                kEnoughForChance, tally.lies);
    return tally.lies == 0 ? 0 : 1;
}

// How true a slider's preview is, see PreviewTruth.h.
#include "measure/PreviewTruth.h"

#include "editor/OperationTable.h"
#include "editor/ResizeArithmetic.h"
#include "editor/SliderCatalogue.h"
#include "editor/WorkingPicture.h"
#include "measure/StructuralSimilarity.h"
#include "picture/engine/Resample.h"

#include <stdlib.h>

#include <system_error>
#include <utility>

namespace pictorel::measure {
namespace {

constexpr std::int16_t kCopyWidth = 250; // pixels
constexpr std::int16_t kDerive = -1;
constexpr int kQuality = 100;
constexpr ColourValue kBackground = 0x00FFFFFF;

std::filesystem::path NewFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "preview-truth-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::filesystem::filesystem_error("There is no temporary folder", pattern,
                                                std::error_code(errno, std::generic_category()));
    }
    return pattern;
}

} // namespace

PreviewTruth::PreviewTruth(PixelArray picture)
    : picture_(std::move(picture)),
      folder_(NewFolder()),
      codec_([](const std::string&) { return true; }, memory_),
      converter_(codec_, memory_) {
    const PictureSize size = SplitSize(ComputeResizeSize(static_cast<std::int16_t>(picture_.Width()),
                                                         static_cast<std::int16_t>(picture_.Height()),
                                                         kCopyWidth, kDerive, false, 0));
    codec_.SetQuality(kQuality);
    codec_.Write(picture_, Path("whole.jpg"), "JPG");
    converter_.SetOutputSize(size.width, size.height);
    converter_.Convert(Path("whole.jpg"), Path("copy.jpg"));
    codec_.Read(Path("copy.jpg"), copy_);
}

PreviewTruth::~PreviewTruth() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

PixelArray PreviewTruth::AfterSlider(const PixelArray& picture, int slider, std::int32_t value) {
    const auto valueOf = [=](int other) {
        return other == slider ? value : SliderCatalogue()[static_cast<std::size_t>(other)].defaultValue;
    };
    const Operation operation = SliderCatalogue()[static_cast<std::size_t>(slider)].operation;
    WorkingPicture working;
    working.SetPicture(picture);
    working.SetBackgroundColour(kBackground);
    OperationTable()[static_cast<std::size_t>(operation)].perform(working, GatherParameters(slider, valueOf),
                                                                  kBackground);
    PixelArray result;
    working.CopyPicture(result);
    return result;
}

double PreviewTruth::Of(int slider, std::int32_t value) const {
    const PixelArray preview = AfterSlider(copy_, slider, value);
    const PixelArray committed = AfterSlider(picture_, slider, value);
    return StructuralSimilarity(preview, engine::Resize(committed, preview.Width(), preview.Height()));
}

} // namespace pictorel::measure

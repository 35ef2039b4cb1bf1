// Decoding by libjxl, see JxlDecoding.h.
#include "picture/codecs/jxl/JxlDecoding.h"

#include "picture/codecs/Cicp.h"
#include "picture/codecs/PixelSupport.h"
#include "picture/codecs/ReadRows.h"
#include "picture/codecs/jxl/JxlLibrary.h"

#include <jxl/encode.h>
#include <jxl/resizable_parallel_runner.h>

#include <algorithm>
#include <optional>
#include <thread>

namespace pictorel::codecs {
namespace {

// Each group of 256 x 256 pixels has an entry of 12 bits and more in the table of a frame; what else there is
// costs a flat picture of photo size 7000 pixels a byte.
constexpr std::int64_t kMostPixelsPerByte = std::int64_t{1} << 14;
constexpr std::uint32_t kMostExtraChannels = 256;
constexpr std::size_t kLargestProfile = std::size_t{16} << 20;

struct DestroyRunner {
    void operator()(void* runner) const noexcept { JxlResizableParallelRunnerDestroy(runner); }
};

class JxlPictureDecoder {
  public:
    explicit JxlPictureDecoder(ByteView file)
        : file_(file), runner_(JxlResizableParallelRunnerCreate(nullptr)), decoder_(MakeJxlDecoder()) {
        JxlDecoderSetParallelRunner(decoder_.get(), JxlResizableParallelRunner, runner_.get());
        JxlDecoderSubscribeEvents(decoder_.get(),
                                  JXL_DEC_BASIC_INFO | JXL_DEC_COLOR_ENCODING | JXL_DEC_FULL_IMAGE);
    }

    enum class End {
        Whole,   // every pixel is there
        Cut,     // the decoder waits for more bytes
        Damaged, // it gave up
    };

    // Decodes as far as these first bytes of the file reach. May be called again with more.
    End Decode(std::size_t bytes) {
        const std::size_t unread = JxlDecoderReleaseInput(decoder_.get());
        const std::size_t from = reached_ - unread;
        JxlDecoderSetInput(decoder_.get(), file_.data() + from, bytes - from);
        reached_ = bytes;
        for (;;) {
            switch (JxlDecoderProcessInput(decoder_.get())) {
                case JXL_DEC_BASIC_INFO:
                    TakeHeader();
                    break;
                case JXL_DEC_COLOR_ENCODING:
                    TakeColours();
                    break;
                case JXL_DEC_NEED_IMAGE_OUT_BUFFER:
                    StartPixels();
                    break;
                case JXL_DEC_FULL_IMAGE: // of the first frame that is shown
                case JXL_DEC_SUCCESS:
                    return reader_ ? End::Whole : End::Damaged;
                case JXL_DEC_NEED_MORE_INPUT:
                    return End::Cut;
                default:
                    return End::Damaged;
            }
        }
    }

    // Fills the picture from what a cut file told of it; false where that is nothing.
    bool ShowWhatThereIs() {
        picture_.SetPartShown(PixelArray::kUnknownPart);
        return reader_ && JxlDecoderFlushImage(decoder_.get()) == JXL_DEC_SUCCESS;
    }

    PixelArray TakePicture() {
        reader_.reset();
        if (info_.alpha_bits > 0) {
            SettleAlpha(picture_);
            if (info_.alpha_premultiplied == JXL_TRUE && picture_.HasAlpha()) {
                Unpremultiply(picture_);
            }
        }
        return std::move(picture_);
    }

  private:
    void TakeHeader() {
        if (JxlDecoderGetBasicInfo(decoder_.get(), &info_) != JXL_DEC_SUCCESS) {
            Refuse("The header of the JPEG XL file is damaged.");
        }
        if (info_.num_extra_channels > kMostExtraChannels) {
            Refuse("The JPEG XL file has more channels than any picture needs.");
        }
        // Each extra channel costs as much as a component.
        CheckClaimedSize(info_.xsize, info_.ysize, file_.size() / (1 + info_.num_extra_channels / 4),
                         kMostPixelsPerByte);
        const std::size_t threads =
            std::min<std::size_t>(JxlResizableParallelRunnerSuggestThreads(info_.xsize, info_.ysize),
                                  std::thread::hardware_concurrency());
        JxlResizableParallelRunnerSetThreads(runner_.get(), std::max<std::size_t>(threads, 1));
    }

    void TakeColours() {
        JxlColorEncoding original;
        const bool isTold = EncodingOf(JXL_COLOR_PROFILE_TARGET_ORIGINAL, original);
        const bool isBright = isTold && IsHighDynamicRange(static_cast<int>(original.transfer_function));
        const bool isSrgb = isTold && ProfileOf(original).empty();
        isWide_ = info_.bits_per_sample > 8 || isBright;
        keptProfile_ = isTold ? ByteBuffer() : IccProfile(JXL_COLOR_PROFILE_TARGET_ORIGINAL);
        // The library itself turns its own colour space into sRGB. What is brighter than white it would clip.
        if (info_.uses_original_profile == JXL_FALSE && !isSrgb && !isBright) {
            JxlColorEncoding srgb;
            JxlColorEncodingSetToSRGB(&srgb, IsGrey() ? JXL_TRUE : JXL_FALSE);
            JxlDecoderSetPreferredColorProfile(decoder_.get(), &srgb);
        }
    }

    bool IsGrey() const { return info_.num_color_channels == 1; }

    ByteBuffer IccProfile(JxlColorProfileTarget target) const {
        std::size_t bytes = 0;
        if (JxlDecoderGetICCProfileSize(decoder_.get(), nullptr, target, &bytes) != JXL_DEC_SUCCESS ||
            bytes > kLargestProfile) {
            return {};
        }
        ByteBuffer profile(bytes);
        return JxlDecoderGetColorAsICCProfile(decoder_.get(), nullptr, target, profile.data(), bytes) ==
                       JXL_DEC_SUCCESS
                   ? profile
                   : ByteBuffer();
    }

    // Of the samples that the decoder hands out; empty where they are sRGB.
    ByteBuffer SampleProfile() const {
        JxlColorEncoding colours;
        return EncodingOf(JXL_COLOR_PROFILE_TARGET_DATA, colours) ? ProfileOf(colours)
                                                                  : IccProfile(JXL_COLOR_PROFILE_TARGET_DATA);
    }

    // False where the colours are told by an ICC profile.
    bool EncodingOf(JxlColorProfileTarget target, JxlColorEncoding& colours) const {
        return JxlDecoderGetColorAsEncodedProfile(decoder_.get(), nullptr, target, &colours) ==
               JXL_DEC_SUCCESS;
    }

    static ByteBuffer ProfileOf(const JxlColorEncoding& colours) {
        CalibratedRgb space;
        const auto point = [](const double(&xy)[2]) { return Chromaticity{xy[0], xy[1]}; };
        if (colours.color_space == JXL_COLOR_SPACE_RGB) {
            space.white = point(colours.white_point_xy);
            space.primaries = {point(colours.primaries_red_xy), point(colours.primaries_green_xy),
                               point(colours.primaries_blue_xy)};
        }
        if (colours.transfer_function == JXL_TRANSFER_FUNCTION_GAMMA) {
            space.gamma.fill(colours.gamma > 0 ? 1 / colours.gamma : 0); // told the encoding way
        } else {
            space.curve = CurveOfTransfer(static_cast<int>(colours.transfer_function));
        }
        return MakeCalibratedProfile(space);
    }

    void StartPixels() {
        if (!reader_) {
            picture_ = PixelArray(static_cast<int>(info_.xsize), static_cast<int>(info_.ysize)); // upright
            FillWhite(picture_, 0, picture_.Height());
            reader_.emplace(picture_, SampleProfile(), isWide_, IsGrey());
            if (!keptProfile_.empty()) { // though the samples may have come out in another space
                Metadata details = picture_.Details();
                details.icc = ProfileAfterConversion(keptProfile_);
                picture_.SetDetails(std::move(details));
            }
        }
        const JxlPixelFormat format{4, isWide_ ? JXL_TYPE_UINT16 : JXL_TYPE_UINT8, JXL_NATIVE_ENDIAN, 0};
        JxlDecoderSetImageOutCallback(decoder_.get(), &format, TakeRow, this);
    }

    // Called from several threads.
    static void TakeRow(void* self, std::size_t x, std::size_t y, std::size_t pixels, const void* samples) {
        const auto& decoder = *static_cast<const JxlPictureDecoder*>(self);
        const auto left = static_cast<int>(x);
        const auto row = static_cast<int>(y);
        const auto count = static_cast<int>(pixels);
        if (decoder.isWide_) {
            decoder.reader_->Take(samples, left, row, count);
            return;
        }
        const auto* rgba = static_cast<const std::uint8_t*>(samples);
        std::uint8_t* const bgra = decoder.reader_->Place(left, row);
        for (int i = 0; i < 4 * count; i += 4) {
            bgra[i] = rgba[i + 2];
            bgra[i + 1] = rgba[i + 1];
            bgra[i + 2] = rgba[i];
            bgra[i + 3] = rgba[i + 3];
        }
        decoder.reader_->Take(bgra, left, row, count);
    }

    ByteView file_;
    std::size_t reached_ = 0;
    std::unique_ptr<void, DestroyRunner> runner_; // goes after the decoder
    JxlDecoderHandle decoder_;
    JxlBasicInfo info_{};
    ByteBuffer keptProfile_; // the file's own where it is an ICC profile
    bool isWide_ = false;
    PixelArray picture_;
    std::optional<RowReader> reader_;
};

// A decoder that found damage shows nothing any more. So the file is fed to others in small steps, to learn
// how far it can be followed.
PixelArray DecodeSoundPart(ByteView file) {
    constexpr std::size_t kSteps = 64;
    std::size_t sound = 0;
    JxlPictureDecoder scout(file);
    for (std::size_t i = 1;
         i < kSteps && scout.Decode(file.size() * i / kSteps) == JxlPictureDecoder::End::Cut; ++i) {
        sound = file.size() * i / kSteps;
    }
    JxlPictureDecoder decoder(file);
    if (sound == 0 || decoder.Decode(sound) != JxlPictureDecoder::End::Cut || !decoder.ShowWhatThereIs()) {
        Refuse("The JPEG XL file is damaged: nothing of its picture can be decoded.");
    }
    return decoder.TakePicture();
}

} // namespace

PixelArray DecodeJxl(ByteView file) {
    {
        JxlPictureDecoder decoder(file);
        const JxlPictureDecoder::End end = decoder.Decode(file.size());
        if (end == JxlPictureDecoder::End::Whole) {
            return decoder.TakePicture();
        }
        if (end == JxlPictureDecoder::End::Cut) {
            if (!decoder.ShowWhatThereIs()) {
                Refuse("The JPEG XL file ends before anything of its picture.");
            }
            return decoder.TakePicture();
        }
    }
    return DecodeSoundPart(file);
}

} // namespace pictorel::codecs

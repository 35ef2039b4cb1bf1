// The boxes of a JPEG XL file, see JxlBoxes.h.
#include "picture/codecs/jxl/JxlBoxes.h"

#include "picture/codecs/jxl/JxlLibrary.h"

#include <algorithm>
#include <cstring>

namespace pictorel::codecs {
namespace {

constexpr std::size_t kLargestBox = std::size_t{16} << 20; // unpacked
constexpr std::size_t kFirstBytes = std::size_t{64} << 10;

// Collects one box while the decoder goes through the file.
class BoxBuffer {
  public:
    explicit BoxBuffer(JxlDecoder* decoder) : decoder_(decoder) {}

    void Start(ByteBuffer& box) {
        Finish();
        box_ = &box;
        Grow(kFirstBytes);
    }

    // False where the box grows beyond all measure.
    bool GoOn() {
        if (box_ == nullptr) {
            return false;
        }
        const std::size_t unused = JxlDecoderReleaseBoxBuffer(decoder_);
        filled_ = box_->size() - unused;
        if (box_->size() >= kLargestBox) {
            Drop();
            return false;
        }
        Grow(box_->size() * 2);
        return true;
    }

    void Finish() {
        if (box_ != nullptr) {
            box_->resize(box_->size() - JxlDecoderReleaseBoxBuffer(decoder_));
            Forget();
        }
    }

    void Drop() {
        if (box_ != nullptr) {
            JxlDecoderReleaseBoxBuffer(decoder_);
            box_->clear();
            Forget();
        }
    }

  private:
    void Grow(std::size_t bytes) {
        box_->resize(bytes);
        JxlDecoderSetBoxBuffer(decoder_, box_->data() + filled_, bytes - filled_);
    }
    void Forget() {
        box_ = nullptr;
        filled_ = 0;
    }

    JxlDecoder* decoder_;
    ByteBuffer* box_ = nullptr;
    std::size_t filled_ = 0;
};

ByteBuffer* PlaceFor(const JxlBoxType& type, JxlBoxes& boxes) {
    const auto isType = [&](const char* name) { return std::memcmp(type, name, sizeof(JxlBoxType)) == 0; };
    if (isType("Exif") && boxes.exif.empty()) {
        return &boxes.exif;
    }
    return isType("xml ") && boxes.xmp.empty() ? &boxes.xmp : nullptr;
}

} // namespace

JxlBoxes ReadJxlBoxes(ByteView file) {
    JxlBoxes boxes;
    if (JxlSignatureCheck(file.data(), file.size()) != JXL_SIG_CONTAINER) {
        return boxes;
    }
    const JxlDecoderHandle decoder = MakeJxlDecoder();
    JxlDecoderSubscribeEvents(decoder.get(), JXL_DEC_BOX);
    JxlDecoderSetDecompressBoxes(decoder.get(), JXL_TRUE);
    JxlDecoderSetInput(decoder.get(), file.data(), file.size());
    JxlDecoderCloseInput(decoder.get());
    BoxBuffer buffer(decoder.get());
    for (;;) {
        switch (JxlDecoderProcessInput(decoder.get())) {
            case JXL_DEC_BOX: {
                buffer.Finish();
                JxlBoxType type;
                const bool isNamed = JxlDecoderGetBoxType(decoder.get(), type, JXL_TRUE) == JXL_DEC_SUCCESS;
                if (ByteBuffer* const place = isNamed ? PlaceFor(type, boxes) : nullptr) {
                    buffer.Start(*place);
                }
                break;
            }
            case JXL_DEC_BOX_NEED_MORE_OUTPUT:
                if (!buffer.GoOn()) {
                    return boxes;
                }
                break;
            case JXL_DEC_SUCCESS:
                buffer.Finish();
                return boxes;
            default: // damaged, or the end of a file that was cut: half a box is none
                buffer.Drop();
                return boxes;
        }
    }
}

} // namespace pictorel::codecs

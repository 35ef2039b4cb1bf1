// A picture in memory: a shared, copy-on-write buffer of 8-bit blue, green, red, alpha pixels.
#pragma once

#include "picture/Limits.h"
#include "picture/Metadata.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace pictorel {

// A value: copying costs nothing, and writing to a shared array first makes it one's own. Dimension 1 are the
// four components of a pixel in the order blue, green, red, alpha (not premultiplied; 255 opaque), dimension
// 2 runs across the width, dimension 3 down the height. Rows start on 64-byte boundaries; what lies between
// the end of a row's pixels and the next row is undefined. Alpha is 255 everywhere unless HasAlpha().
class PixelArray {
  public:
    static constexpr int kComponents = 4;

    PixelArray() = default; // empty: 0 x 0

    // Pixels are undefined until written. Throws ImagingError (TooLarge, OutOfMemory).
    PixelArray(int width, int height);

    // Over memory that is at hand: `height` rows, StrideOf(width) bytes apart, 64-byte aligned, writable
    // while an array holds them. Throws ImagingError(TooLarge, UnsupportedFormat), as above.
    PixelArray(int width, int height, std::shared_ptr<std::uint8_t> rows);

    // Bytes from row to row of an array of this width.
    static std::ptrdiff_t StrideOf(int width) noexcept;

    // As above, with the alpha meaning, metadata and reduction of `source`, for an operation's result.
    static PixelArray Like(const PixelArray& source, int width, int height);
    static PixelArray Like(const PixelArray& source) { return Like(source, source.width_, source.height_); }

    bool IsEmpty() const noexcept { return width_ == 0; }
    int Width() const noexcept { return width_; }
    int Height() const noexcept { return height_; }
    std::ptrdiff_t Stride() const noexcept { return stride_; } // bytes from row to row
    std::size_t RowBytes() const noexcept { return static_cast<std::size_t>(width_) * kComponents; }

    const std::uint8_t* Row(int y) const noexcept { return buffer_.get() + y * stride_; }

    // Row 0 of pixels that are this array's own; other rows follow at Stride(). Copies first when shared, so
    // take it once, before a loop.
    std::uint8_t* WritableRows();

    bool SharesPixelsWith(const PixelArray& other) const noexcept {
        return buffer_ && buffer_ == other.buffer_;
    }

    // Whether the fourth component means anything: the "second plane" of the imaging interfaces.
    bool HasAlpha() const noexcept { return hasAlpha_; }
    void SetHasAlpha(bool hasAlpha) noexcept { hasAlpha_ = hasAlpha; }

    // Width of this array / width of the part of the picture that it shows: 1 for a picture, less for a
    // reduced copy (more for the copy of a part that is smaller than it). Spatial parameters (radii, lengths,
    // block sizes) are pixels of the picture and are multiplied by it.
    double Reduction() const noexcept { return reduction_; }
    void SetReduction(double reduction) noexcept { reduction_ = reduction; }

    // Of which picture it shows a part, and where that begins, in pixels of the picture: what depends on the
    // position (chance, a grid of blocks) is reckoned from the picture's corner, what grows with the picture
    // from its longer side.
    struct Place {
        int left = 0;
        int top = 0;
        int longerSide = 0; // 0 where it shows the whole picture
    };
    const Place& InPicture() const noexcept { return inPicture_; }
    void SetPlaceInPicture(const Place& place) noexcept { inPicture_ = place; }

    // Of the picture that it shows, all or in part, in pixels of the picture.
    double LongerSideOfPicture() const noexcept {
        return inPicture_.longerSide != 0 ? inPicture_.longerSide : std::max(width_, height_) / reduction_;
    }

    // How much of the picture its file held: 1 for all of it, less where that was damaged, kUnknownPart where
    // it was and nobody can tell how much. Not handed on by Like: what an operation makes is whole.
    static constexpr double kUnknownPart = 0;
    double PartShown() const noexcept { return partShown_; }
    void SetPartShown(double part) noexcept { partShown_ = part; }

    const Metadata& Details() const noexcept;
    void SetDetails(Metadata details);

  private:
    std::shared_ptr<std::uint8_t> buffer_;
    std::shared_ptr<const Metadata> details_;
    std::ptrdiff_t stride_ = 0;
    int width_ = 0;
    int height_ = 0;
    Place inPicture_;
    double reduction_ = 1.0;
    double partShown_ = 1.0;
    bool hasAlpha_ = false;
};

} // namespace pictorel

// Metafiles built record by record in memory, and pictures of them looked at pixel by pixel.
#pragma once

#include "picture/codecs/PictureSupport.h"
#include "picture/metafile/Metafile.h"
#include "picture/metafile/emf/EmfFormat.h"
#include "picture/metafile/wmf/WmfFormat.h"

#include <bit>
#include <string>

namespace pictorel::metafile::testing {

using codecs::ByteBuffer;
using codecs::ByteView;
using codecs::testing::Bytes;

// An enhanced metafile whose device has 96 dots an inch, so that its units are the picture's pixels.
class Emf {
  public:
    Emf(int width, int height) : width_(width), height_(height) {}

    Emf& Add(EmfType type, const ByteBuffer& fields) {
        ++records_;
        bytes_.Le32({static_cast<int>(type), static_cast<std::int64_t>(fields.size()) + 8}).Append(fields);
        return *this;
    }
    Emf& Add(EmfType type, std::initializer_list<std::int64_t> fields = {}) {
        return Add(type, Bytes().Le32(fields).Done());
    }
    Emf& Pen(int style, int width, std::uint32_t colour) { // in slot 1, and selected
        return Add(EmfType::CreatePen, {1, style, width, 0, colour}).Add(EmfType::SelectObject, {1});
    }
    Emf& Brush(int style, std::uint32_t colour, int hatch = 0) { // in slot 2
        return Add(EmfType::CreateBrush, {2, style, colour, hatch}).Add(EmfType::SelectObject, {2});
    }
    Emf& NoPen() { return Add(EmfType::SelectObject, {0x80000008}); }

    ByteBuffer Done() const {
        constexpr int kHeaderBytes = 108;
        const auto size = static_cast<std::int64_t>(kHeaderBytes + bytes_.Size() + 20);
        return Bytes()
            .Le32({1, kHeaderBytes, 0, 0, width_ - 1, height_ - 1, 0, 0, Hundredths(width_),
                   Hundredths(height_)})
            .Le32({kEmfSignature, 0x10000, size, records_ + 2, 16, 0, 0, 0, 9600, 9600, 2540, 2540, 0, 0, 0,
                   2540000, 2540000})
            .Append(bytes_.Done())
            .Le32({static_cast<int>(EmfType::EndOfFile), 20, 0, 16, 20})
            .Done();
    }

  private:
    static std::int64_t Hundredths(int pixels) { return (pixels * 2540 + 48) / 96; } // of a millimetre

    int width_;
    int height_;
    int records_ = 0;
    Bytes bytes_;
};

// A placeable Windows metafile of 96 units an inch, likewise.
class Wmf {
  public:
    Wmf(int width, int height) : width_(width), height_(height) {}

    Wmf& Add(WmfType type, const ByteBuffer& fields) {
        bytes_.Le32({3 + static_cast<std::int64_t>(fields.size()) / 2})
            .Le16({static_cast<int>(type)})
            .Append(fields);
        return *this;
    }
    Wmf& Add(WmfType type, std::initializer_list<std::int64_t> fields = {}) {
        return Add(type, Bytes().Le16(fields).Done());
    }
    Wmf& Pen(int style, int width, std::int64_t colour) { // in the next free slot
        return Add(WmfType::CreatePen, {style, width, 0, colour & 0xFFFF, colour >> 16});
    }
    Wmf& Brush(int style, std::int64_t colour, int hatch = 0) {
        return Add(WmfType::CreateBrush, {style, colour & 0xFFFF, colour >> 16, hatch});
    }
    Wmf& Select(int slot) { return Add(WmfType::SelectObject, {slot}); }

    ByteBuffer Done(bool placeable = true) const {
        Bytes file;
        if (placeable) {
            file.Le32({kPlaceableKey}).Le16({0, 0, 0, width_, height_, 96, 0, 0, 0});
        }
        return file.Le16({1, 9, 0x300})
            .Le32({static_cast<std::int64_t>(bytes_.Size() + 24) / 2})
            .Le16({8, 0, 0, 0})
            .Append(bytes_.Done())
            .Le32({3})
            .Le16({0})
            .Done();
    }

  private:
    int width_;
    int height_;
    Bytes bytes_;
};

inline PixelArray Read(ByteView file) {
    static const codecs::CodecTable table(MetafileCodecs());
    const codecs::Codec* const codec = table.FindByContent(file);
    if (codec == nullptr) {
        throw ImagingError(ImagingFailure::UnsupportedFormat, "no codec");
    }
    return codec->read(file, {});
}

// "RRGGBB" of a pixel.
inline std::string At(const PixelArray& picture, int x, int y) {
    PixelArray one(1, 1);
    std::memcpy(one.WritableRows(), picture.Row(y) + std::ptrdiff_t{4} * x, 4);
    return codecs::testing::Spelled(one);
}

// A small picture as text, a row a line: letters for the colours that the tests use, "?" for others.
inline std::string Drawn(const PixelArray& picture) {
    const std::pair<const char*, char> letters[] = {{"FFFFFF", '.'}, {"000000", '#'}, {"FF0000", 'r'},
                                                    {"00FF00", 'g'}, {"0000FF", 'b'}, {"FFFF00", 'y'},
                                                    {"00FFFF", 'c'}, {"FF00FF", 'm'}};
    std::string text;
    for (int y = 0; y < picture.Height(); ++y) {
        text += y > 0 ? "\n" : "";
        for (int x = 0; x < picture.Width(); ++x) {
            const std::string colour = At(picture, x, y);
            char letter = '?';
            for (const auto& row : letters) {
                letter = colour == row.first ? row.second : letter;
            }
            text += letter;
        }
    }
    return text;
}

inline std::string Drawn(const Emf& emf) {
    return Drawn(Read(emf.Done()));
}
inline std::string Drawn(const Wmf& wmf) {
    return Drawn(Read(wmf.Done()));
}

inline constexpr std::uint32_t kRed = 0x0000FF; // as records spell colours
inline constexpr std::uint32_t kGreen = 0x00FF00;
inline constexpr std::uint32_t kBlue = 0xFF0000;

// A bitmap of 24 bits, information header and pixels; rows of one pixel are "r/g": the lowest first.
inline ByteBuffer Dib(int width, int height, std::initializer_list<std::uint32_t> colours) {
    Bytes bytes;
    bytes.Le32({40, width, height}).Le16({1, 24}).Le32({0, 0, 0, 0, 0, 0});
    int x = 0;
    for (const std::uint32_t colour : colours) {
        bytes.U8({static_cast<int>(colour >> 16 & 255), static_cast<int>(colour >> 8 & 255),
                  static_cast<int>(colour & 255)});
        if (++x == width) {
            bytes.Zeros(static_cast<std::size_t>(-3 * width & 3));
            x = 0;
        }
    }
    return bytes.Done();
}

} // namespace pictorel::metafile::testing

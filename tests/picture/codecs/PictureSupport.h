// Small pictures, files built byte by byte, and pictures spelled out as text, for the tests of the formats.
#pragma once

#include "picture/ImagingError.h"
#include "picture/codecs/Codec.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace pictorel::codecs::testing {

// Builds a file a number at a time.
class Bytes {
  public:
    Bytes& U8(std::initializer_list<int> values) {
        for (const int value : values) {
            bytes_.push_back(static_cast<std::uint8_t>(value));
        }
        return *this;
    }
    Bytes& Le16(std::initializer_list<std::int64_t> values) { return Number(values, 2); }
    Bytes& Le32(std::initializer_list<std::int64_t> values) { return Number(values, 4); }
    Bytes& Be32(std::initializer_list<std::int64_t> values) {
        for (const std::int64_t value : values) {
            for (int shift = 24; shift >= 0; shift -= 8) {
                U8({static_cast<int>(value >> shift & 0xFF)});
            }
        }
        return *this;
    }
    Bytes& Text(std::string_view text) {
        bytes_.insert(bytes_.end(), text.begin(), text.end());
        return *this;
    }
    Bytes& Append(ByteView more) {
        bytes_.insert(bytes_.end(), more.begin(), more.end());
        return *this;
    }
    Bytes& Zeros(std::size_t count) {
        bytes_.resize(bytes_.size() + count);
        return *this;
    }
    std::size_t Size() const { return bytes_.size(); }
    const ByteBuffer& Done() const { return bytes_; }

  private:
    Bytes& Number(std::initializer_list<std::int64_t> values, int size) {
        for (const std::int64_t value : values) {
            for (int i = 0; i < size; ++i) {
                U8({static_cast<int>(value >> (8 * i) & 0xFF)});
            }
        }
        return *this;
    }

    ByteBuffer bytes_;
};

// "RRGGBB RRGGBB/RRGGBB ...": rows divided by strokes, alpha after the colour where the picture has any.
inline std::string Spelled(const PixelArray& picture) {
    constexpr std::string_view kHex = "0123456789ABCDEF";
    std::string text;
    for (int y = 0; y < picture.Height(); ++y) {
        text += y > 0 ? "/" : "";
        for (int x = 0; x < picture.Width(); ++x) {
            const std::uint8_t* const pixel = picture.Row(y) + std::ptrdiff_t{4} * x;
            text += x > 0 ? " " : "";
            for (const int component : {2, 1, 0, 3}) {
                if (component < 3 || picture.HasAlpha()) {
                    text += kHex[pixel[component] >> 4];
                    text += kHex[pixel[component] & 15];
                }
            }
        }
    }
    return text;
}

// The picture as the program reads it, or the error as text: "error 0" is an unsupported format.
inline PixelArray Read(ByteView file) {
    const Codec* const codec = FindCodecByContent(file);
    if (codec == nullptr) {
        throw ImagingError(ImagingFailure::UnsupportedFormat, "no codec");
    }
    return codec->read(file, {});
}

inline std::string SpelledFile(ByteView file) {
    try {
        return Spelled(Read(file));
    } catch (const ImagingError& error) {
        return "error " + std::to_string(static_cast<int>(error.Kind()));
    }
}
inline constexpr const char* kUnsupported = "error 0";
inline constexpr const char* kTooLarge = "error 1";

// A file made by a recipe, and its picture spelled out.
template <typename Recipe>
struct RecipeCase {
    const char* name;
    Recipe recipe;
    std::string expected;
};
template <typename Recipe>
void ExpectReads(ByteBuffer (*make)(const Recipe&), const std::vector<RecipeCase<Recipe>>& cases) {
    for (const auto& c : cases) {
        EXPECT_EQ(SpelledFile(make(c.recipe)), c.expected) << c.name;
    }
}

inline ByteBuffer Write(std::string_view extension, const PixelArray& picture) {
    return FindCodecByExtension(extension)->write(picture, {});
}

// A picture with `colours` different colours (up to all), smooth enough to compress and noisy enough to be
// hard; with alpha, all degrees of it. Always the same for the same arguments.
inline PixelArray MakePicture(int width, int height, bool withAlpha = false, int colours = 1 << 24) {
    PixelArray picture(width, height);
    std::uint8_t* const rows = picture.WritableRows();
    std::uint32_t random = 12345;
    for (int y = 0; y < height; ++y) {
        std::uint8_t* pixel = rows + y * picture.Stride();
        for (int x = 0; x < width; ++x, pixel += 4) {
            random = random * 1664525 + 1013904223;
            const std::uint32_t noise = random >> 29;
            const std::uint32_t colour = ((static_cast<std::uint32_t>(x) * 3 + noise) & 255) << 16 |
                                         ((static_cast<std::uint32_t>(y) * 2 + noise) & 255) << 8 |
                                         (static_cast<std::uint32_t>(x + y) & 255);
            const std::uint32_t value =
                colours == 1 << 24 ? colour : colour % static_cast<std::uint32_t>(colours) * 0x01F3A7;
            pixel[0] = static_cast<std::uint8_t>(value);
            pixel[1] = static_cast<std::uint8_t>(value >> 8);
            pixel[2] = static_cast<std::uint8_t>(value >> 16);
            pixel[3] = withAlpha ? static_cast<std::uint8_t>(x * 5 + y) : std::uint8_t{255};
        }
    }
    picture.SetHasAlpha(withAlpha);
    return picture;
}

inline ::testing::AssertionResult SamePixels(const PixelArray& a, const PixelArray& b) {
    if (a.Width() != b.Width() || a.Height() != b.Height() || a.HasAlpha() != b.HasAlpha()) {
        return ::testing::AssertionFailure()
               << a.Width() << " x " << a.Height() << (a.HasAlpha() ? " with alpha" : "") << " against "
               << b.Width() << " x " << b.Height() << (b.HasAlpha() ? " with alpha" : "");
    }
    for (int y = 0; y < a.Height(); ++y) {
        if (std::memcmp(a.Row(y), b.Row(y), a.RowBytes()) != 0) {
            return ::testing::AssertionFailure() << "row " << y << " differs";
        }
    }
    return ::testing::AssertionSuccess();
}

} // namespace pictorel::codecs::testing

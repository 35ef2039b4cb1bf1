// The boxes of a JP2 file: everything that is said about a JPEG 2000 codestream from outside.
#pragma once

#include "picture/codecs/Codec.h"

#include <cstdint>
#include <vector>

namespace pictorel::codecs {

enum class J2kSpace { Unsaid, Grey, Rgb, Ycc, Cmyk, Lab };

struct Jp2Palette {
    struct Column {
        int bits = 8;
        bool isSigned = false;
        std::vector<std::uint16_t> values; // as the file has them, one an entry
    };
    std::vector<Column> columns;
};

struct Jp2Boxes {
    static constexpr int kNoColumn = -1;
    // A channel is a component as it is, or looked up in a column of the palette.
    struct Channel {
        int component = 0;
        int column = kNoColumn;
    };
    enum class Role { Colour = 0, Alpha = 1, PremultipliedAlpha = 2, Other };
    struct Definition {
        int channel = 0;
        Role role = Role::Other;
        int association = 0; // of Colour: which one, from 1 on
    };

    ByteView codestream;
    J2kSpace space = J2kSpace::Unsaid;
    ByteView icc;
    ByteView exif;
    Jp2Palette palette;
    std::vector<Channel> channels;       // empty: the components in their order
    std::vector<Definition> definitions; // empty: the colours in their order, then perhaps alpha
    double dotsPerInchX = 0;
    double dotsPerInchY = 0;
};

inline constexpr std::string_view kCodestreamSignature{"\xFF\x4F\xFF\x51", 4};
inline constexpr std::string_view kJp2Signature{"\0\0\0\x0CjP  \r\n\x87\n", 12};
// Names the box that carries EXIF, by a convention that the makers of such files share.
inline constexpr std::string_view kExifBoxName{"JpgTiffExif->JP2"};

// Number of a colour space in the file.
inline constexpr std::uint32_t kJp2Srgb = 16;

// The boxes of the file; a bare codestream has none. Damaged boxes are left out. Throws
// ImagingError(UnsupportedFormat) where there is no codestream.
Jp2Boxes ReadJp2Boxes(ByteView file);

// Puts boxes around a codestream of three components, or of four with alpha.
ByteBuffer WrapInJp2Boxes(const PixelArray& picture, bool withAlpha, const ByteBuffer& codestream);

} // namespace pictorel::codecs

// The boxes of a JP2 file, see Jp2Boxes.h.
#include "picture/codecs/j2k/Jp2Boxes.h"

#include "picture/codecs/ByteReader.h"
#include "picture/codecs/Exif.h"
#include "picture/codecs/PixelSupport.h"

#include <algorithm>
#include <cmath>

namespace pictorel::codecs {
namespace {

constexpr std::uint32_t BoxType(const char (&letters)[5]) {
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i) {
        value = value << 8 | static_cast<std::uint8_t>(letters[i]);
    }
    return value;
}

// Calls visit(type, content) for each box in turn, until it returns false or the boxes end.
template <typename Visit>
void ForEachBox(ByteView boxes, Visit visit) {
    while (boxes.size() >= 8) {
        std::uint64_t length = BigEndian32(boxes, 0);
        std::size_t headerBytes = 8;
        if (length == 1) { // the length takes 64 bits
            length = std::uint64_t{BigEndian32(boxes, 8)} << 32 | BigEndian32(boxes, 12);
            headerBytes = 16;
        } else if (length == 0) { // the last box
            length = boxes.size();
        }
        if (length < headerBytes) {
            return;
        }
        const auto inFile = static_cast<std::size_t>(std::min<std::uint64_t>(length, boxes.size()));
        if (!visit(BigEndian32(boxes, 4), Slice(boxes.first(inFile), headerBytes))) {
            return;
        }
        boxes = boxes.subspan(inFile);
    }
}

struct SpaceRow {
    std::uint32_t code;
    J2kSpace space;
};
constexpr SpaceRow kSpaces[] = {
    {1, J2kSpace::Ycc},  {3, J2kSpace::Ycc},   {4, J2kSpace::Ycc},        {12, J2kSpace::Cmyk},
    {14, J2kSpace::Lab}, {15, J2kSpace::Grey}, {kJp2Srgb, J2kSpace::Rgb}, {17, J2kSpace::Grey},
    {18, J2kSpace::Ycc}, {20, J2kSpace::Rgb},  {24, J2kSpace::Ycc},
};
constexpr SpaceRow kProfileSpaces[] = {
    {BoxType("GRAY"), J2kSpace::Grey},
    {BoxType("RGB "), J2kSpace::Rgb},
    {BoxType("CMYK"), J2kSpace::Cmyk},
};

J2kSpace FindSpace(std::span<const SpaceRow> rows, std::uint32_t code) {
    const auto found =
        std::find_if(rows.begin(), rows.end(), [&](const SpaceRow& r) { return r.code == code; });
    return found == rows.end() ? J2kSpace::Unsaid : found->space;
}

class BoxReader {
  public:
    Jp2Boxes Read(ByteView file) {
        ForEachBox(file, [this](std::uint32_t type, ByteView content) {
            if (type == BoxType("jp2h")) {
                ReadHeader(content);
            } else if (type == BoxType("jp2c") && boxes_.codestream.empty()) {
                boxes_.codestream = content;
            } else if (type == BoxType("uuid") && StartsWith(content, kExifBoxName)) {
                boxes_.exif = Slice(content, kExifBoxName.size());
            }
            return true;
        });
        return std::move(boxes_);
    }

  private:
    struct HeaderBox {
        std::uint32_t type;
        void (BoxReader::*read)(ByteView content);
    };

    void ReadHeader(ByteView content) {
        constexpr HeaderBox kBoxes[] = {
            {BoxType("colr"), &BoxReader::ReadColour},      {BoxType("pclr"), &BoxReader::ReadPalette},
            {BoxType("cmap"), &BoxReader::ReadChannels},    {BoxType("cdef"), &BoxReader::ReadDefinitions},
            {BoxType("res "), &BoxReader::ReadResolutions},
        };
        ForEachBox(content, [&](std::uint32_t type, ByteView box) {
            for (const HeaderBox& row : kBoxes) {
                if (row.type == type) {
                    (this->*row.read)(box);
                }
            }
            return true;
        });
    }

    // The first description that is understood counts.
    void ReadColour(ByteView box) {
        constexpr int kByNumber = 1;
        const int method = ByteAt(box, 0);
        if (boxes_.space != J2kSpace::Unsaid) {
            return;
        }
        if (method == kByNumber) {
            boxes_.space = FindSpace(kSpaces, BigEndian32(box, 3));
        } else {
            const ByteView icc = Slice(box, 3);
            boxes_.space = FindSpace(kProfileSpaces, BigEndian32(icc, 16));
            boxes_.icc = boxes_.space == J2kSpace::Unsaid ? ByteView{} : icc;
        }
    }

    void ReadPalette(ByteView box) {
        const std::size_t entries = BigEndian16(box, 0);
        const std::size_t columns = ByteAt(box, 2);
        Jp2Palette palette;
        std::size_t entryBytes = 0;
        for (std::size_t i = 0; i < columns; ++i) {
            const std::uint8_t depth = ByteAt(box, 3 + i);
            const int bits = (depth & 0x7F) + 1;
            if (bits > 16) {
                return;
            }
            palette.columns.push_back({bits, (depth & 0x80) != 0, {}});
            entryBytes += bits > 8 ? 2 : 1;
        }
        if (entries == 0 || box.size() < 3 + columns + entries * entryBytes) {
            return;
        }
        std::size_t at = 3 + columns;
        for (std::size_t i = 0; i < entries; ++i) {
            for (Jp2Palette::Column& column : palette.columns) {
                const bool isWide = column.bits > 8;
                column.values.push_back(isWide ? BigEndian16(box, at) : ByteAt(box, at));
                at += isWide ? 2 : 1;
            }
        }
        boxes_.palette = std::move(palette);
    }

    void ReadChannels(ByteView box) {
        boxes_.channels.clear();
        for (std::size_t at = 0; at + 4 <= box.size(); at += 4) {
            const bool isMapped = ByteAt(box, at + 2) == 1;
            boxes_.channels.push_back(
                {BigEndian16(box, at), isMapped ? ByteAt(box, at + 3) : Jp2Boxes::kNoColumn});
        }
    }

    void ReadDefinitions(ByteView box) {
        const std::size_t count = std::min<std::size_t>(BigEndian16(box, 0), box.size() / 6);
        boxes_.definitions.clear();
        for (std::size_t i = 0; i < count; ++i) {
            const int role = std::min<int>(BigEndian16(box, 4 + 6 * i), 3);
            boxes_.definitions.push_back({BigEndian16(box, 2 + 6 * i), static_cast<Jp2Boxes::Role>(role),
                                          BigEndian16(box, 6 + 6 * i)});
        }
    }

    // The resolution to show the picture in holds over that in which it was taken.
    void ReadResolutions(ByteView box) {
        ForEachBox(box, [this](std::uint32_t type, ByteView content) {
            if (type == BoxType("resd") || (type == BoxType("resc") && boxes_.dotsPerInchX == 0)) {
                boxes_.dotsPerInchY = ReadResolution(content, 0, 8);
                boxes_.dotsPerInchX = ReadResolution(content, 4, 9);
            }
            return true;
        });
    }

    // Pixels per metre as a fraction and a power of ten.
    static double ReadResolution(ByteView box, std::size_t fractionAt, std::size_t exponentAt) {
        const int divisor = BigEndian16(box, fractionAt + 2);
        if (divisor == 0) {
            return 0;
        }
        const auto exponent = static_cast<std::int8_t>(ByteAt(box, exponentAt));
        return InchesFromMetre(BigEndian16(box, fractionAt) * std::pow(10.0, exponent) / divisor);
    }

    Jp2Boxes boxes_;
};

// A box within `out`, whose length is filled in when it is complete.
template <typename AppendContent>
void AppendBox(ByteBuffer& out, std::uint32_t type, AppendContent appendContent) {
    const std::size_t begin = out.size();
    AppendBigEndian32(out, 0);
    AppendBigEndian32(out, type);
    appendContent();
    const auto length = static_cast<std::uint32_t>(out.size() - begin);
    for (std::size_t i = 0; i < 4; ++i) {
        out[begin + i] = static_cast<std::uint8_t>(length >> (24 - 8 * i));
    }
}

void AppendColour(ByteBuffer& out, const ByteBuffer& icc) {
    AppendBox(out, BoxType("colr"), [&] {
        out.push_back(icc.empty() ? 1 : 2);
        AppendBigEndian16(out, 0);
        if (icc.empty()) {
            AppendBigEndian32(out, kJp2Srgb);
        } else {
            out.insert(out.end(), icc.begin(), icc.end());
        }
    });
}

// Red, green and blue, then what goes with them all.
void AppendDefinitionsOfAlpha(ByteBuffer& out) {
    AppendBox(out, BoxType("cdef"), [&] {
        for (const std::uint32_t number : {4, 0, 0, 1, 1, 0, 2, 2, 0, 3, 3, 1, 0}) {
            AppendBigEndian16(out, number);
        }
    });
}

// Pixels per metre as (10 x dpi) / 254 x 10^3, which is exact for whole numbers of dots per inch.
void AppendResolution(ByteBuffer& out, const Metadata& details) {
    const auto fits = [](double dotsPerInch) { return dotsPerInch > 0 && dotsPerInch * 10 <= 65535; };
    if (!fits(details.dotsPerInchX) || !fits(details.dotsPerInchY)) {
        return;
    }
    AppendBox(out, BoxType("res "), [&] {
        AppendBox(out, BoxType("resd"), [&] {
            for (const double dotsPerInch : {details.dotsPerInchY, details.dotsPerInchX}) {
                AppendBigEndian16(out, static_cast<std::uint32_t>(std::lround(dotsPerInch * 10)));
                AppendBigEndian16(out, 254);
            }
            out.push_back(3);
            out.push_back(3);
        });
    });
}

void AppendHeader(ByteBuffer& out, const PixelArray& picture, bool withAlpha) {
    AppendBox(out, BoxType("jp2h"), [&] {
        AppendBox(out, BoxType("ihdr"), [&] {
            AppendBigEndian32(out, static_cast<std::uint32_t>(picture.Height()));
            AppendBigEndian32(out, static_cast<std::uint32_t>(picture.Width()));
            AppendBigEndian16(out, withAlpha ? 4 : 3);
            out.insert(out.end(), {7, 7, 0, 0}); // 8 bits, JPEG 2000, the colour space is known
        });
        AppendColour(out, picture.Details().icc);
        if (withAlpha) {
            AppendDefinitionsOfAlpha(out);
        }
        AppendResolution(out, picture.Details());
    });
}

} // namespace

Jp2Boxes ReadJp2Boxes(ByteView file) {
    Jp2Boxes boxes;
    if (StartsWith(file, kCodestreamSignature)) {
        boxes.codestream = file;
    } else {
        boxes = BoxReader().Read(file);
    }
    if (!StartsWith(boxes.codestream, kCodestreamSignature)) { // a box before it is damaged
        const auto found =
            std::search(file.begin(), file.end(), kCodestreamSignature.begin(), kCodestreamSignature.end(),
                        [](std::uint8_t a, char b) { return a == static_cast<std::uint8_t>(b); });
        boxes.codestream = Slice(file, static_cast<std::size_t>(found - file.begin()));
    }
    if (!StartsWith(boxes.codestream, kCodestreamSignature)) {
        Refuse("The JPEG 2000 file holds no picture.");
    }
    return boxes;
}

ByteBuffer WrapInJp2Boxes(const PixelArray& picture, bool withAlpha, const ByteBuffer& codestream) {
    const ByteBuffer exif = WithPictureSize(picture.Details().exif, picture.Width(), picture.Height());
    ByteBuffer out;
    out.reserve(codestream.size() + exif.size() + picture.Details().icc.size() + 1024);
    out.assign(kJp2Signature.begin(), kJp2Signature.end());
    AppendBox(out, BoxType("ftyp"), [&] {
        AppendBigEndian32(out, BoxType("jp2 "));
        AppendBigEndian32(out, 0);
        AppendBigEndian32(out, BoxType("jp2 "));
    });
    AppendHeader(out, picture, withAlpha);
    if (!exif.empty()) {
        AppendBox(out, BoxType("uuid"), [&] {
            out.insert(out.end(), kExifBoxName.begin(), kExifBoxName.end());
            out.insert(out.end(), exif.begin(), exif.end());
        });
    }
    const std::size_t length = codestream.size() + 8; // 0, for "to the end", where it takes more than 32 bits
    AppendBigEndian32(out, length <= UINT32_MAX ? static_cast<std::uint32_t>(length) : 0U);
    AppendBigEndian32(out, BoxType("jp2c"));
    out.insert(out.end(), codestream.begin(), codestream.end());
    return out;
}

} // namespace pictorel::codecs

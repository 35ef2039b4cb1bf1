// A bitmap inside a metafile, decoded only when something draws with it.
#pragma once

#include "picture/codecs/Codec.h"

#include <QImage>
#include <QSize>

#include <optional>
#include <vector>

namespace pictorel::metafile {

class Bitmap {
  public:
    // A device-independent bitmap: its information header with colour table, and its pixels. `indexed` colour
    // tables hold numbers of `palette` entries instead of colours.
    Bitmap(codecs::ByteView information, codecs::ByteView pixels, bool indexed = false,
           const std::vector<QRgb>& palette = {});

    // The same in one piece, pixels after the colour table; what Windows metafiles hold.
    static Bitmap Packed(codecs::ByteView bytes, bool indexed, const std::vector<QRgb>& palette);

    // An old device-dependent bitmap: 1 bit a pixel (black and white), 16, 24 or 32. None for other kinds.
    static std::optional<Bitmap> OfDevice(codecs::ByteView bytes);

    QSize Size() const noexcept { return size_; }
    bool IsTopDown() const noexcept { return topDown_; }
    int Depth() const noexcept { return depth_; }
    double DotsPerInchX() const noexcept;
    double DotsPerInchY() const noexcept;

    // Makes it a bitmap of `count` rows, its first ones: records may hold only some of those that the header
    // claims.
    void KeepRows(int count);

    // Opaque pixels (RGB32), or with `withAlpha` those of a bitmap of 32 bits that is multiplied by its
    // alpha. A null image where it cannot be decoded. Throws ImagingError(OutOfMemory).
    QImage Decode(bool withAlpha = false) const;

  private:
    Bitmap() = default;

    codecs::ByteBuffer header_; // information header and colour table
    codecs::ByteView pixels_;
    codecs::ByteBuffer deviceRows_; // instead of them, where the file's rows are laid out otherwise
    QSize size_;
    bool topDown_ = false;
    int depth_ = 0;
};

} // namespace pictorel::metafile

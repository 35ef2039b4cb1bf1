// The numbers of Windows metafiles: headers and record types.
#pragma once

#include <cstddef>
#include <cstdint>

namespace pictorel::metafile {

inline constexpr std::uint32_t kPlaceableKey = 0x9AC6CDD7;
inline constexpr std::size_t kPlaceableHeaderBytes = 22;
inline constexpr std::size_t kWmfHeaderBytes = 18;
inline constexpr int kAnisotropic = 8; // the mapping mode with a scale of its own for each axis

enum class WmfType : std::uint16_t {
    EndOfFile = 0x0000,
    SaveDc = 0x001E,
    SetPaletteEntries = 0x0037,
    CreatePalette = 0x00F7,
    SetBkMode = 0x0102,
    SetMapMode = 0x0103,
    SetRop2 = 0x0104,
    SetPolyFillMode = 0x0106,
    SetStretchBltMode = 0x0107,
    SetTextCharExtra = 0x0108,
    RestoreDc = 0x0127,
    InvertRegion = 0x012A,
    PaintRegion = 0x012B,
    SelectClipRegion = 0x012C,
    SelectObject = 0x012D,
    SetTextAlign = 0x012E,
    ResizePalette = 0x0139,
    DibCreatePatternBrush = 0x0142,
    DeleteObject = 0x01F0,
    CreatePatternBrush = 0x01F9,
    SetBkColour = 0x0201,
    SetTextColour = 0x0209,
    SetTextJustification = 0x020A,
    SetWindowOrg = 0x020B,
    SetWindowExt = 0x020C,
    SetViewportOrg = 0x020D,
    SetViewportExt = 0x020E,
    OffsetWindowOrg = 0x020F,
    OffsetViewportOrg = 0x0211,
    LineTo = 0x0213,
    MoveTo = 0x0214,
    OffsetClipRegion = 0x0220,
    FillRegion = 0x0228,
    SelectPalette = 0x0234,
    CreatePen = 0x02FA,
    CreateFont = 0x02FB,
    CreateBrush = 0x02FC,
    Polygon = 0x0324,
    Polyline = 0x0325,
    ScaleWindowExt = 0x0410,
    ScaleViewportExt = 0x0412,
    ExcludeClipRect = 0x0415,
    IntersectClipRect = 0x0416,
    Ellipse = 0x0418,
    Rectangle = 0x041B,
    SetPixel = 0x041F,
    FrameRegion = 0x0429,
    TextOut = 0x0521,
    PolyPolygon = 0x0538,
    RoundRect = 0x061C,
    PatBlt = 0x061D,
    CreateRegion = 0x06FF,
    Arc = 0x0817,
    Pie = 0x081A,
    Chord = 0x0830,
    BitBlt = 0x0922,
    DibBitBlt = 0x0940,
    ExtTextOut = 0x0A32,
    StretchBlt = 0x0B23,
    DibStretchBlt = 0x0B41,
    SetDibToDevice = 0x0D33,
    StretchDib = 0x0F43,
};

} // namespace pictorel::metafile

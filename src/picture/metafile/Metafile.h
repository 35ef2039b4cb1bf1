// Windows metafiles (.wmf) and enhanced metafiles (.emf): drawings, read by playing them onto white paper.
#pragma once

#include "picture/codecs/Codec.h"

#include <span>

namespace pictorel::metafile {

// The rows of both formats, to be asked before those that have no sure signature. Text is drawn where the
// program has a QGuiApplication (fonts need one) and left out elsewhere.
std::span<const codecs::Codec> MetafileCodecs() noexcept;

bool IsWmf(codecs::ByteView file) noexcept;
bool IsEmf(codecs::ByteView file) noexcept;

// A metafile that is nothing but one bitmap becomes that bitmap, pixel for pixel; any other is drawn at its
// physical size at 96 pixels an inch. What it leaves undrawn is white: its raster operations are meant for
// paper. Enhanced files that hold records of the newer drawing interface are drawn from the plain ones beside
// them, and refused where there are none.
PixelArray ReadWmf(codecs::ByteView file, const codecs::ReadOptions& options);
PixelArray ReadEmf(codecs::ByteView file, const codecs::ReadOptions& options);

// The picture as one bitmap of 24 bits a pixel at its physical size (96 pixels an inch where that is
// unknown). Transparency is laid over white.
codecs::ByteBuffer WriteWmf(const PixelArray& picture, const codecs::WriteOptions& options);
codecs::ByteBuffer WriteEmf(const PixelArray& picture, const codecs::WriteOptions& options);

} // namespace pictorel::metafile

// The pixels of the commonest kind of PNG file, inflated in one go, which takes half the time.
#pragma once

#include "picture/codecs/Codec.h"

namespace pictorel::codecs {

// Fills `picture`, which has the size that the file's header says, from a file of 8-bit red, green and blue,
// with alpha behind them or without, and not interlaced. False where its data is anything but whole and
// sound, or the picture very large; what the picture holds then is undefined.
bool ReadPlainPng(ByteView file, bool hasAlpha, PixelArray& picture);

} // namespace pictorel::codecs

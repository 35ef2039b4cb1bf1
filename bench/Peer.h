// What the benchmarks are measured beside: libjpeg-turbo on one thread.
#pragma once

#include "picture/codecs/Codec.h"

#include <vector>

namespace pictorel::bench {

void DecodeWithPeer(const codecs::ByteBuffer& file, std::vector<unsigned char>& pixels, int width,
                    int height);
// Quality 100 without subsampling.
void EncodeWithPeer(const std::vector<unsigned char>& pixels, int width, int height);

} // namespace pictorel::bench

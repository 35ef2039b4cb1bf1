// What the benchmarks are measured beside, see Peer.h.
#include "Peer.h"

#include <turbojpeg.h>

namespace pictorel::bench {

void DecodeWithPeer(const codecs::ByteBuffer& file, std::vector<unsigned char>& pixels, int width,
                    int height) {
    const tjhandle peer = tjInitDecompress();
    pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
    tjDecompress2(peer, file.data(), file.size(), pixels.data(), width, 0, height, TJPF_BGRA, 0);
    tjDestroy(peer);
}

void EncodeWithPeer(const std::vector<unsigned char>& pixels, int width, int height) {
    const tjhandle peer = tjInitCompress();
    unsigned char* bytes = nullptr;
    unsigned long size = 0; // NOLINT(google-runtime-int): the library's type
    tjCompress2(peer, pixels.data(), width, 0, height, TJPF_BGRA, &bytes, &size, TJSAMP_444, 100, 0);
    tjFree(bytes);
    tjDestroy(peer);
}

} // namespace pictorel::bench

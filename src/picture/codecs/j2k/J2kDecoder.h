// Decodes a JPEG 2000 codestream a tile at a time.
#pragma once

#include "picture/codecs/j2k/J2kStream.h"

#include <memory>
#include <vector>

namespace pictorel::codecs {

// The samples of a tile, one component after another, rows without gaps, J2kComponent::SampleBytes() each.
struct J2kTile {
    J2kArea area; // on the reference grid
    ByteBuffer samples;
    // How often each component is halved: not at all, unless the file does not hold its finer details.
    std::vector<int> halvings;

    // The samples that there are of a component, on the grid of its own.
    J2kArea AreaOf(const J2kComponent& component, std::size_t number) const {
        return area.Sampled(component.stepX << halvings[number], component.stepY << halvings[number]);
    }
};

class J2kDecoder {
  public:
    // The stream has to live as long as the decoder.
    explicit J2kDecoder(const J2kStream& stream);
    ~J2kDecoder();
    J2kDecoder(const J2kDecoder&) = delete;
    J2kDecoder& operator=(const J2kDecoder&) = delete;

    // The next tile that the file holds, in its order. False at the end and where damage keeps the rest away.
    bool Next(J2kTile& tile);

  private:
    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};

} // namespace pictorel::codecs

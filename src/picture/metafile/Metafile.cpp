// The rows of both metafile formats, see Metafile.h.
#include "picture/metafile/Metafile.h"

#include <array>

namespace pictorel::metafile {
namespace {

constexpr std::array kCodecs{
    codecs::Codec{"Enhanced metafile", "EMF", IsEmf, ReadEmf, WriteEmf},
    codecs::Codec{"Windows metafile", "WMF", IsWmf, ReadWmf, WriteWmf},
};

} // namespace

std::span<const codecs::Codec> MetafileCodecs() noexcept {
    return kCodecs;
}

} // namespace pictorel::metafile

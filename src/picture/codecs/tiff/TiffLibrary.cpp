// Opens TIFF files in memory, see TiffLibrary.h.
#include "picture/codecs/tiff/TiffLibrary.h"

#include "picture/codecs/PixelSupport.h"

#include <tiffio.h>

#include <algorithm>
#include <cstring>

namespace pictorel::codecs {
namespace {

// The most that the library may take at once; a picture at the limits with few strips needs as much.
constexpr tmsize_t kLargestAllocation = tmsize_t{1} << 32;

int Silent(TIFF*, void*, const char*, const char*, va_list) {
    return 1; // dealt with: the handlers of the process, which print, are not asked
}

} // namespace

// What the library's callbacks get. They are called from C and throw nothing.
struct TiffFile::Memory {
    ByteView bytes;
    std::uint64_t position = 0;

    static Memory& Of(thandle_t client) noexcept { return *static_cast<Memory*>(client); }

    static tmsize_t Read(thandle_t client, void* out, tmsize_t size) noexcept {
        Memory& memory = Of(client);
        if (memory.position >= memory.bytes.size() || size <= 0) {
            return 0;
        }
        const auto wanted = static_cast<std::uint64_t>(size);
        const std::uint64_t count = std::min<std::uint64_t>(wanted, memory.bytes.size() - memory.position);
        std::memcpy(out, memory.bytes.data() + memory.position, count);
        memory.position += count;
        return static_cast<tmsize_t>(count);
    }
    static tmsize_t Write(thandle_t, void*, tmsize_t) noexcept { return 0; }
    static toff_t Seek(thandle_t client, toff_t offset, int whence) noexcept {
        Memory& memory = Of(client);
        const std::uint64_t base = whence == SEEK_CUR   ? memory.position
                                   : whence == SEEK_END ? memory.bytes.size()
                                                        : 0;
        memory.position = base + offset;
        return memory.position;
    }
    static int CloseNothing(thandle_t) noexcept { return 0; }
    static toff_t Size(thandle_t client) noexcept { return Of(client).bytes.size(); }
    static int Map(thandle_t client, void** base, toff_t* size) noexcept {
        // A file opened for reading is only read through its mapping.
        *base = const_cast<std::uint8_t*>(Of(client).bytes.data());
        *size = Of(client).bytes.size();
        return 1;
    }
    static void Unmap(thandle_t, void*, toff_t) noexcept {}
};

void TiffFile::Close::operator()(tiff* handle) const noexcept {
    TIFFClose(handle);
}

TiffFile::TiffFile(ByteView file, std::uint64_t directoryOffset)
    : memory_(std::make_unique<Memory>(Memory{file})) {
    const std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(TIFFOpenOptionsAlloc(),
                                                                                   &TIFFOpenOptionsFree);
    if (options) {
        TIFFOpenOptionsSetErrorHandlerExtR(options.get(), Silent, nullptr);
        TIFFOpenOptionsSetWarningHandlerExtR(options.get(), Silent, nullptr);
        TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), kLargestAllocation);
        // "h": no directory is read yet.
        handle_.reset(TIFFClientOpenExt("TIFF", "rh", memory_.get(), Memory::Read, Memory::Write,
                                        Memory::Seek, Memory::CloseNothing, Memory::Size, Memory::Map,
                                        Memory::Unmap, options.get()));
    }
    if (!handle_ || TIFFSetSubDirectory(handle_.get(), directoryOffset) == 0) {
        Refuse("The TIFF file is damaged beyond use.");
    }
    std::uint16_t compression = 0;
    std::uint16_t photometric = 0;
    std::uint16_t planar = 0;
    TIFFGetFieldDefaulted(handle_.get(), TIFFTAG_COMPRESSION, &compression);
    TIFFGetFieldDefaulted(handle_.get(), TIFFTAG_PHOTOMETRIC, &photometric);
    TIFFGetFieldDefaulted(handle_.get(), TIFFTAG_PLANARCONFIG, &planar);
    if (compression == COMPRESSION_JPEG && photometric == PHOTOMETRIC_YCBCR &&
        planar == PLANARCONFIG_CONTIG) {
        TIFFSetField(handle_.get(), TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
    }
    if (compression == COMPRESSION_SGILOG || compression == COMPRESSION_SGILOG24) {
        TIFFSetField(handle_.get(), TIFFTAG_SGILOGDATAFMT, SGILOGDATAFMT_8BIT);
    }
}

TiffFile::~TiffFile() = default;
TiffFile::TiffFile(TiffFile&&) noexcept = default;
TiffFile& TiffFile::operator=(TiffFile&&) noexcept = default;

} // namespace pictorel::codecs

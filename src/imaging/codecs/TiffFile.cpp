// A TIFF file in memory, see TiffFile.h. The callbacks are called by C code: none of them throws.
#include "imaging/codecs/TiffFile.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>
#include <new>

namespace pictorel::codecs {
namespace {

// The most that libtiff may take at once for what a file claims; strips and tiles are checked by their
// reader.
constexpr tmsize_t kLargestAllocation = tmsize_t{1} << 32;

TiffMemory& MemoryOf(thandle_t handle) {
    return *static_cast<TiffMemory*>(handle);
}

std::uint64_t SizeOf(const TiffMemory& memory) {
    return memory.isWriting ? memory.written.size() : memory.file.size();
}

tmsize_t Read(thandle_t handle, void* out, tmsize_t bytes) {
    TiffMemory& memory = MemoryOf(handle);
    const std::uint64_t size = SizeOf(memory);
    if (bytes <= 0 || memory.position >= size) {
        return 0;
    }
    const std::uint64_t count =
        std::min<std::uint64_t>(static_cast<std::uint64_t>(bytes), size - memory.position);
    const std::uint8_t* const data = memory.isWriting ? memory.written.data() : memory.file.data();
    std::memcpy(out, data + memory.position, count);
    memory.position += count;
    return static_cast<tmsize_t>(count);
}

tmsize_t Write(thandle_t handle, void* data, tmsize_t bytes) {
    TiffMemory& memory = MemoryOf(handle);
    if (!memory.isWriting || bytes < 0) {
        return 0;
    }
    try {
        const std::uint64_t end = memory.position + static_cast<std::uint64_t>(bytes);
        if (end > memory.written.size()) {
            memory.written.resize(end);
        }
        std::memcpy(memory.written.data() + memory.position, data, static_cast<std::size_t>(bytes));
        memory.position = end;
        return bytes;
    } catch (const std::bad_alloc&) {
        memory.isOutOfMemory = true;
        return 0;
    }
}

toff_t Seek(thandle_t handle, toff_t offset, int whence) {
    TiffMemory& memory = MemoryOf(handle);
    switch (whence) {
        case SEEK_CUR:
            memory.position += offset;
            break;
        case SEEK_END:
            memory.position = SizeOf(memory) + offset;
            break;
        default:
            memory.position = offset;
    }
    return memory.position;
}

int Close(thandle_t /*handle*/) {
    return 0;
}

toff_t Size(thandle_t handle) {
    return SizeOf(MemoryOf(handle));
}

int Silence(TIFF* /*tiff*/, void* /*user*/, const char* /*module*/, const char* /*format*/,
            va_list /*values*/) {
    return 1; // handled
}

struct FreeOptions {
    void operator()(TIFFOpenOptions* options) const noexcept { TIFFOpenOptionsFree(options); }
};

} // namespace

TiffHandle OpenTiff(TiffMemory& memory, const char* mode) {
    const std::unique_ptr<TIFFOpenOptions, FreeOptions> options(TIFFOpenOptionsAlloc());
    if (!options) {
        return nullptr;
    }
    // Handlers of this handle alone: the global ones belong to nobody.
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), Silence, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), Silence, nullptr);
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), kLargestAllocation);
    // Nothing is mapped: of a mapped strip that the file's end cuts off libtiff would give no row at all.
    return TiffHandle(TIFFClientOpenExt("picture", mode, &memory, Read, Write, Seek, Close, Size, nullptr,
                                        nullptr, options.get()));
}

} // namespace pictorel::codecs

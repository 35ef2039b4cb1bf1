// What reading and writing share of libjpeg: errors that come back to us, and silence on the terminal.
// Included by the .cpp files that call the library, and by nothing else.
#pragma once

#include "picture/ImagingError.h"

#include <csetjmp>
#include <cstddef>
#include <cstdio>

// jpeglib.h needs size_t and FILE before it.
#include <jerror.h>
#include <jpeglib.h>

#include <string>

namespace pictorel::codecs {

// The library reports a fatal error by a call that must not return, and it is C: no exception may pass
// through it. So it jumps back into Guarded(). `base` comes first, since the library only knows that.
struct JpegErrors {
    jpeg_error_mgr base;
    std::jmp_buf escape;
};

inline void InstallJpegErrors(JpegErrors& errors) {
    jpeg_std_error(&errors.base);
    errors.base.error_exit = [](j_common_ptr library) {
        std::longjmp(reinterpret_cast<JpegErrors*>(library->err)->escape, 1);
    };
    errors.base.emit_message = [](j_common_ptr library, int level) {
        library->err->num_warnings += level < 0 ? 1 : 0;
    };
    errors.base.output_message = [](j_common_ptr) {};
}

// Runs a step that calls the library; false where it ended by a fatal error. A jump skips destructors:
// neither the step nor what it calls may hold objects that have one while it is inside the library.
template <class Session>
bool Guarded(JpegErrors& errors, void (*step)(Session&), Session& session) {
    if (setjmp(errors.escape) != 0) { // NOLINT(cert-err52-cpp)
        return false;
    }
    step(session);
    return true;
}

// The exception for the error that ended a step.
inline ImagingError JpegFailure(const JpegErrors& errors) {
    switch (errors.base.msg_code) {
        case JERR_OUT_OF_MEMORY:
        case JERR_NO_BACKING_STORE:
            return {ImagingFailure::OutOfMemory, "There is not enough memory for this JPEG picture."};
        case JERR_IMAGE_TOO_BIG:
            return {ImagingFailure::TooLarge, "This JPEG picture is larger than this editor can open."};
        case JERR_BAD_PRECISION:
            return {ImagingFailure::UnsupportedFormat,
                    "JPEG pictures of more than 8 bits are not supported."};
        case JERR_SOF_UNSUPPORTED:
            return {ImagingFailure::UnsupportedFormat, "This kind of JPEG compression is not supported."};
        default:
            return {ImagingFailure::UnsupportedFormat, "The JPEG file is damaged beyond use."};
    }
}

} // namespace pictorel::codecs

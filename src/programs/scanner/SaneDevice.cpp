// Scanners through the SANE library, see SaneDevice.h.
#include "programs/scanner/SaneDevice.h"

#include "picture/ImagingError.h"
#include "picture/Limits.h"
#include "programs/scanner/SaneOptions.h"
#include "programs/scanner/ScannedPage.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace pictorel::scanner {
namespace {

constexpr std::size_t kReadSize = 32 * 1024; // bytes
constexpr std::size_t kLargestFrame = std::size_t{512}
                                      << 20; // bytes; A3 at 600 dpi and 16 bits is 417 million
constexpr int kFullPercent = 100;

struct StatusRow {
    SANE_Status status;
    const char* text;
};

constexpr std::array kStatusTexts{
    StatusRow{SANE_STATUS_UNSUPPORTED, "The scanner does not support this kind of scan."},
    StatusRow{SANE_STATUS_CANCELLED, "The scan was cancelled at the scanner."},
    StatusRow{SANE_STATUS_DEVICE_BUSY, "The scanner is busy. Another program may be using it."},
    StatusRow{SANE_STATUS_INVAL, "The scanner cannot be opened. It may have been unplugged or switched off."},
    StatusRow{SANE_STATUS_EOF, "The scanner has no page to send."},
    StatusRow{SANE_STATUS_JAMMED, "The paper is jammed in the scanner's feeder."},
    StatusRow{SANE_STATUS_NO_DOCS, "There is no paper in the scanner's feeder."},
    StatusRow{SANE_STATUS_COVER_OPEN, "The scanner's cover is open."},
    StatusRow{SANE_STATUS_IO_ERROR, "The connection to the scanner failed. It may have been unplugged."},
    StatusRow{SANE_STATUS_NO_MEM, "There is not enough memory for this page."},
    StatusRow{SANE_STATUS_ACCESS_DENIED, "This user may not use the scanner."},
};

[[noreturn]] void Fail(SANE_Status status) {
    for (const StatusRow& row : kStatusTexts) {
        if (row.status == status) {
            throw ScanError(row.text);
        }
    }
    throw ScanError(std::string("The scanner reports an error: ") + sane_strstatus(status) + ".");
}

void Check(SANE_Status status) {
    if (status != SANE_STATUS_GOOD) {
        Fail(status);
    }
}

struct BandOfFormat {
    SANE_Frame format;
    Band band;
    int frames; // of a whole page
};

constexpr std::array kFormats{
    BandOfFormat{SANE_FRAME_GRAY, Band::Gray, 1}, BandOfFormat{SANE_FRAME_RGB, Band::Rgb, 1},
    BandOfFormat{SANE_FRAME_RED, Band::Red, 3}, BandOfFormat{SANE_FRAME_GREEN, Band::Green, 3},
    BandOfFormat{SANE_FRAME_BLUE, Band::Blue, 3}};

const BandOfFormat& FormatOf(const SANE_Parameters& parameters) {
    const auto found = std::find_if(kFormats.begin(), kFormats.end(),
                                    [&](const BandOfFormat& row) { return row.format == parameters.format; });
    if (found == kFormats.end()) {
        throw ScanError("The scanner sends its page in a form that is not supported.");
    }
    return *found;
}

// The frame's bytes up to the scanner's own end of it. The number of lines that was announced only feeds the
// progress: hand-held scanners do not know it, and others send fewer or more.
std::vector<std::uint8_t> ReadFrame(SANE_Handle device, const SANE_Parameters& parameters, int framesBefore,
                                    const ScanProgress& progress) {
    const double expected =
        static_cast<double>(parameters.lines) * parameters.bytes_per_line * FormatOf(parameters).frames;
    const double before = static_cast<double>(parameters.lines) * parameters.bytes_per_line * framesBefore;
    const std::size_t longest =
        std::min(kLargestFrame, static_cast<std::size_t>(parameters.bytes_per_line) * kMaximumSide);
    std::vector<std::uint8_t> bytes;
    int reported = -1;
    while (true) {
        if (progress.isStopped()) {
            throw ScanError("The scan was stopped.");
        }
        const std::size_t have = bytes.size();
        if (have > longest) {
            throw ScanError("The scanned page is too large.");
        }
        bytes.resize(have + kReadSize);
        SANE_Int length = 0;
        const SANE_Status status = sane_read(device, bytes.data() + have, kReadSize, &length);
        bytes.resize(have + static_cast<std::size_t>(status == SANE_STATUS_GOOD ? std::max(length, 0) : 0));
        if (status == SANE_STATUS_EOF) {
            return bytes;
        }
        Check(status);
        const int percent =
            expected > 0
                ? static_cast<int>(kFullPercent *
                                   std::min(1.0, (before + static_cast<double>(bytes.size())) / expected))
                : reported;
        if (percent != reported) {
            progress.report(reported = percent);
        }
    }
}

ScannedPage ReadFrames(SANE_Handle device, const ScanProgress& progress) {
    constexpr int kMostFrames = 3;
    ScannedPage page;
    for (int frame = 0; frame < kMostFrames; ++frame) {
        Check(sane_start(device));
        SANE_Parameters parameters{}; // exact only once the scan is under way
        Check(sane_get_parameters(device, &parameters));
        if (parameters.bytes_per_line < 1 || parameters.pixels_per_line > kMaximumSide) {
            throw ScanError("The scanned page is too large or has no width.");
        }
        const FrameLayout layout{FormatOf(parameters).band, parameters.depth, parameters.pixels_per_line,
                                 parameters.bytes_per_line};
        page.AddFrame(layout, ReadFrame(device, parameters, frame, progress));
        if (parameters.last_frame == SANE_TRUE) {
            break;
        }
    }
    return page;
}

bool IsCamera(const SANE_Device& device) {
    const std::string_view type = device.type != nullptr ? device.type : "";
    return type.find("camera") != std::string_view::npos || type.find("grabber") != std::string_view::npos;
}

} // namespace

SaneSession::SaneSession() {
    Check(sane_init(nullptr, nullptr));
}

SaneSession::~SaneSession() {
    sane_exit();
}

std::vector<std::string> SaneSession::Sources() const {
    const SANE_Device** devices = nullptr;
    Check(sane_get_devices(&devices, SANE_FALSE));
    std::vector<std::string> scanners;
    std::vector<std::string> cameras;
    for (; devices != nullptr && *devices != nullptr; ++devices) {
        (IsCamera(**devices) ? cameras : scanners).emplace_back((*devices)->name);
    }
    scanners.insert(scanners.end(), cameras.begin(), cameras.end());
    if (const char* const favourite = std::getenv("SANE_DEFAULT_DEVICE")) {
        const auto found = std::find(scanners.begin(), scanners.end(), favourite);
        if (found != scanners.end()) {
            std::rotate(scanners.begin(), found, found + 1);
        }
    }
    return scanners;
}

Scanner::Scanner(const std::string& source) {
    Check(sane_open(source.c_str(), &handle_));
}

// Cancelling is due after every start, also when the page is complete: it sends the lamp home.
Scanner::~Scanner() {
    sane_cancel(handle_);
    sane_close(handle_);
}

PixelArray Scanner::ScanPage(const ScanWishes& wishes, const ScanProgress& progress) const {
    ApplyWishes(handle_, wishes);
    PixelArray picture = ReadFrames(handle_, progress).Picture();
    const Resolution resolution = CurrentResolution(handle_);
    Metadata details;
    details.dotsPerInchX = resolution.x;
    details.dotsPerInchY = resolution.y;
    picture.SetDetails(std::move(details));
    return picture;
}

} // namespace pictorel::scanner

// The walls around the decoder in words, see WallsText.h.
#include "editor/decoding/WallsText.h"

#include <string_view>
#include <vector>

namespace pictorel {
namespace {

std::string Line(std::string_view before, const std::vector<std::string>& names) {
    std::string line;
    for (const std::string& name : names) {
        line += (line.empty() ? std::string(before) : std::string(", ")) + name;
    }
    return line.empty() ? line : line + '\n';
}

} // namespace

std::string WallsText(const DecoderProcess::WallReport& report) {
    if (report.standing.empty() && report.lacking.empty()) {
        return "Decoder: does not start; only JPEG and PNG files can be opened\n";
    }
    return Line("Decoder walled off by: ", report.standing) + Line("Not on this machine: ", report.lacking);
}

std::string WallsText(const std::string& program) {
    return WallsText(DecoderProcess(program).Walls());
}

} // namespace pictorel

// What a person is told of the walls around the decoder.
#pragma once

#include "editor/decoding/DecoderProcess.h"

#include <string>

namespace pictorel {

// A line of the walls that stand, and a second of those that this machine lacks, if any; each ends in a line
// feed. Where neither is known, the line says that the program does not start.
std::string WallsText(const DecoderProcess::WallReport& report);

// The same of the program of that path, which is started for it and takes some hundredths of a second.
std::string WallsText(const std::string& program);

} // namespace pictorel

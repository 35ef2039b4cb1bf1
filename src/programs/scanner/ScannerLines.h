// The words that the scanner program and the editor exchange, one message a line.
#pragma once

namespace pictorel::scanner {

// To the program. The end of its input is the last command: it ends once the page at hand has been sent.
inline constexpr char kScan[] = "scan"; // scan INDEX: one page of the source of that index, from 0

// From the program. After its start it sends every source, then kSourcesEnd; after kScan any number of
// kProgress, then kPage or kFailure.
inline constexpr char kSource[] = "source"; // source NAME
inline constexpr char kSourcesEnd[] = "ready";
inline constexpr char kProgress[] = "progress"; // progress PERCENT
inline constexpr char kFailure[] = "failure";   // failure TEXT, a sentence for the person
// page WIDTH HEIGHT DPIX DPIY: then HEIGHT rows of WIDTH pixels follow without gaps, blue, green, red, 255
inline constexpr char kPage[] = "page";

} // namespace pictorel::scanner

// The walls around a program that handles bytes from strangers: what is left to it is to compute, to read
// what it was given, to answer, and to end.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace pictorel::decoder {

// A bit each.
enum Wall : std::uint32_t {
    kSystemCalls = 1U << 0,   // seccomp: all but a short list of calls are refused
    kFileSystem = 1U << 1,    // Landlock: no path leads anywhere
    kNetwork = 1U << 2,       // a network namespace of its own, without a way out
    kMemory = 1U << 3,        // a bound on memory and address space
    kProcessorTime = 1U << 4, // a bound on processor time, then the end
    kFiles = 1U << 5,         // no file can grow, few can be open, no core is written
    kPrivileges = 1U << 6,    // no capability, none to be gained, nothing to be traced from outside
};

struct WallName {
    Wall wall;
    std::string_view name;
};

inline constexpr std::array kWallNames{
    WallName{kSystemCalls, "system calls"},
    WallName{kFileSystem, "file system"},
    WallName{kNetwork, "network"},
    WallName{kMemory, "memory"},
    WallName{kProcessorTime, "processor time"},
    WallName{kFiles, "files"},
    WallName{kPrivileges, "privileges"},
};

inline constexpr std::uint32_t kAllWalls = (1U << kWallNames.size()) - 1;

struct WallLimits {
    std::uint64_t memoryBytes = 0;      // of private memory; 0: as much as the machine has
    std::uint64_t sharedBytes = 0;      // of address space beyond it, for memory that is given
    std::uint64_t processorSeconds = 0; // until the end
    int answersOn = -1;                 // the one descriptor over which messages may go
};

// Raises those of the `wanted` walls that this machine can, for good, and gives those that stand. What a
// machine lacks leaves the others as they are. To be called while the process has a single thread; threads of
// its own may follow.
std::uint32_t RaiseWalls(const WallLimits& limits, std::uint32_t wanted = kAllWalls) noexcept;

} // namespace pictorel::decoder

// How much memory this process can take without the system having to end programs.
#pragma once

#include <cstdint>
#include <string>

namespace pictorel {

// Bytes: what the machine has available, no more than what the process's control group and its own limits on
// address space and data leave. A figure that the system does not tell bounds nothing.
std::int64_t FreeMemory();

// The same as read from the given folders ("/proc", "/sys/fs/cgroup"), for a process without limits.
std::int64_t FreeMemoryAsToldIn(const std::string& processes, const std::string& groups);

// "3.4 GB", "870 MB": for messages.
std::string MemoryText(std::int64_t bytes);

} // namespace pictorel

// The wall of system calls.
#pragma once

namespace pictorel::decoder {

// From now on every thread of this process has the calls of a short list: memory without executable pages,
// threads of its own, time, reading open descriptors, messages on `answersOn`, and the end. Others fail with
// EPERM. False where the kernel has no such filters.
bool FilterSystemCalls(int answersOn) noexcept;

} // namespace pictorel::decoder

// One loop over numbered pieces of work, shared out among all cores.
#pragma once

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace pictorel::sample {

// Calls body(i) for each i in [0, count), in no fixed order, and returns when all are done. Each piece has to
// write to places of its own, which also makes the result the same on any number of cores. The first
// exception is rethrown.
template <typename Body>
void ForEachIndex(int count, const Body& body) {
    std::atomic<int> next{0};
    std::exception_ptr failure;
    std::mutex failureLock;
    const auto work = [&] {
        try {
            for (int i = next++; i < count; i = next++) {
                body(i);
            }
        } catch (...) {
            const std::lock_guard lock(failureLock);
            failure = std::current_exception();
            next = count;
        }
    };
    {
        std::vector<std::jthread> helpers;
        for (unsigned i = 1; i < std::max(1U, std::thread::hardware_concurrency()); ++i) {
            helpers.emplace_back(work);
        }
        work();
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
}

} // namespace pictorel::sample

// What every peer program does beside its resize: read the source, time the rounds, write the result.
#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

struct Job {
    std::vector<std::uint8_t> source; // BGRA, rows without padding
    int fromWidth, fromHeight, width, height;
    std::vector<std::uint8_t> result;
};

// Usage of each: PEER SOURCE.bgra WIDTH HEIGHT NEW_WIDTH NEW_HEIGHT RESULT.bgra. Prints a line for
// results.tsv.
inline int RunPeer(const char* name, char* words[], const std::function<void(Job&)>& resize) {
    constexpr int kRounds = 9;
    Job job{{}, std::atoi(words[2]), std::atoi(words[3]), std::atoi(words[4]), std::atoi(words[5]), {}};
    job.source.resize(static_cast<std::size_t>(job.fromWidth) * job.fromHeight * 4);
    job.result.resize(static_cast<std::size_t>(job.width) * job.height * 4);
    std::ifstream(words[1], std::ios::binary)
        .read(reinterpret_cast<char*>(job.source.data()), static_cast<std::streamsize>(job.source.size()));
    double least = 1e9;
    for (int round = 0; round < kRounds; ++round) {
        const auto start = std::chrono::steady_clock::now();
        resize(job);
        const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
        least = time.count() < least ? time.count() : least;
    }
    std::ofstream(words[6], std::ios::binary)
        .write(reinterpret_cast<const char*>(job.result.data()),
               static_cast<std::streamsize>(job.result.size()));
    std::printf("%s\t%.2f\t%s\n", name, least, words[6]);
    return 0;
}

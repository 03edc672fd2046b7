// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace zr {

// The number of threads that `jobs` requests; 0 stands for one per core.
inline unsigned Jobs(unsigned jobs) {
    return jobs != 0 ? jobs : std::max(1U, std::thread::hardware_concurrency());
}

// Calls work(i) once for every i below count, on at most `jobs` threads (0: one per core), the caller's among
// them. Calls for different i must not touch the same data. When one throws, no further call starts and the
// first exception is rethrown. When no thread can be started the caller does all the work.
template <typename Work>
void ParallelFor(std::size_t count, unsigned jobs, Work work) {
    std::atomic<std::size_t> next{0};
    std::mutex mutex;
    std::exception_ptr failure;
    const auto run = [&] {
        for (std::size_t i; (i = next++) < count;) {
            try {
                work(i);
            } catch (...) {
                const std::lock_guard lock(mutex);
                if (!failure) failure = std::current_exception();
                next = count;
            }
        }
    };
    {
        std::vector<std::jthread> others;
        const std::size_t threads = std::min<std::size_t>(Jobs(jobs), count);
        try {
            for (std::size_t i = 1; i < threads; ++i) others.emplace_back(run);
        } catch (const std::exception&) {
            // The system has no room for another thread.
        }
        run();
    }
    if (failure) std::rethrow_exception(failure);
}

}  // namespace zr

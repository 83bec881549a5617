#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <exception>
#include <thread>
#include <vector>

/// Runs the task once for each number below `count`, each time on a thread of its own. Returns when all
/// are done; exceptions fail the test.
template <typename Task>
void runInThreads(std::size_t count, Task task) {
    std::vector<std::thread> threads;
    for (std::size_t number = 0; number < count; ++number) {
        threads.emplace_back([number, &task] {
            try {
                task(number);
            } catch (const std::exception& exception) {
                ADD_FAILURE() << "station " << number << ": " << exception.what();
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

/// Makes requests that a unit's commands may make something of: of the forms that a station has for
/// them, with values that they look at. For the mutators of the fuzzers: a new form is one of these by
/// being there.
class RequestMaker {
public:
    explicit RequestMaker(unsigned seed) : m_random(seed) {}

    /// A command's name and its arguments.
    std::vector<std::string> words();

    /// The same, as they stand on a line.
    std::string line();

    /// The same as a frame, or one of a command's id and other bytes.
    std::string frame();

    /// Less than `count`, which is not 0.
    std::size_t below(std::size_t count) { return m_random() % count; }

private:
    std::string argument(const std::string& field);
    std::string data();
    std::string bytes(std::size_t count);
    std::string anyFrame();

    std::minstd_rand m_random;
};

using Requests = std::vector<std::string>;

/// Changes one of the requests, or their order, or has the fuzzer change one's bytes.
void mutate(Requests& requests, unsigned seed, std::string (RequestMaker::*make)());

// The commands, asked by frames: whatever they are, each is answered as every frame is, and in a new
// unit the same frames come to the same end.

#include <algorithm>
#include <string>

#include "Expect.h"
#include "Input.h"
#include "support/CommandRun.h"
#include "support/RequestMaker.h"

namespace {

constexpr std::size_t kLongest = 255;

/// One byte with the number of bytes that follow, and these, for each.
Requests split(Input& input) {
    Requests requests;
    while (!input.isEmpty()) {
        const std::size_t size = input.byte();
        requests.emplace_back(input.bytes(size));
    }
    return requests;
}

std::string joined(std::uint8_t faults, const Requests& requests) {
    std::string bytes(1, static_cast<char>(faults));
    for (const std::string& request : requests) {
        const std::size_t size = std::min(request.size(), kLongest);
        bytes += static_cast<char>(size);
        bytes.append(request, 0, size);
    }
    return bytes;
}

std::string runAll(std::uint8_t faults, const Requests& requests) {
    CommandRun::renew(faults);
    std::string transcript;
    for (const std::string& request : requests)
        transcript += CommandRun::run(CommandRun::Frame(request.begin(), request.end())).transcript;
    return transcript;
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most,
                                               unsigned seed) {
    Input input(data, size);
    std::uint8_t faults = input.byte();
    Requests requests = split(input);
    mutate(requests, seed, &RequestMaker::frame);
    // Mostly a frame says how long it is, and nothing fails.
    RequestMaker chance(seed);
    for (std::string& request : requests)
        if (!request.empty() && chance.below(8) != 0)
            request.front() = static_cast<char>(std::min(request.size(), kLongest));
    if (chance.below(16) == 0)
        faults = static_cast<std::uint8_t>(chance.below(2) == 0 ? 0 : 1U << chance.below(8));
    const std::string bytes = joined(faults, requests).substr(0, most);
    std::copy(bytes.begin(), bytes.end(), data);
    return bytes.size();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::uint8_t faults = input.byte();
    const Requests requests = split(input);
    const std::string transcript = runAll(faults, requests);
    expectSame(transcript, runAll(faults, requests), "what the same frames lead to in a new unit");
    return 0;
}

#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

/// The other system, as far as the seam's half for it calls it. It does nothing: it notes each call as
/// one line, the name and the arguments in their order, and hands out the results that wait for the
/// call. Not synchronised.
///
/// In a line, flags and command numbers are hexadecimal and other numbers
/// decimal; texts are quoted; the bytes of a buffer are hexadecimal digits
/// in brackets; a pointer that is only passed on is "null" or "set".
namespace FakeSystem {

struct Result {
    long value = 0;                     ///< what the call returns; for a pointer, -1 means null
    int error = 0;                      ///< what `errno` becomes, unless 0
    std::vector<unsigned char> bytes{}; ///< what arrives in the call's buffers, in their order
    std::function<void(void*)> fill{};  ///< writes the structure that the call fills in
};

/// Forgets all.
void reset();

/// What the next call of that name that has no result yet gets. Without a result a call succeeds.
void next(const std::string& call, Result result);

/// The next call of that name returns -1 with this `errno`.
void fail(const std::string& call, int error);

/// All calls since the last look, in their order.
std::vector<std::string> calls();

/// The calls that were expected to come and did not.
std::vector<std::string> leftOver();

/// For the calls themselves: notes one and returns its result.
Result record(const std::string& call, const std::vector<std::string>& arguments, long usualValue = 0);

/// The same for a call that returns an int and brings nothing else.
int recordInt(const std::string& call, const std::vector<std::string>& arguments, long usualValue = 0);

std::string hex(unsigned number);
inline std::string hex(int flags) {
    return hex(static_cast<unsigned>(flags));
}
std::string text(const char* characters);
std::string pointer(const void* address);
std::string bytes(const void* address, std::size_t size);

/// Puts what the result brings into a buffer.
void deliver(const Result& result, void* address, std::size_t size);

} // namespace FakeSystem

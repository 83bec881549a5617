#pragma once

#include <gtest/gtest.h>

#include <iosfwd>
#include <string>
#include <vector>

namespace station {

// Tables of the binary forms, one row a case: each command's test instantiates these suites.

struct FormCommand {
    std::string name;
    std::vector<std::string> arguments;
};

/// What a command is sent as.
struct SentForm {
    FormCommand command;
    std::string frame; ///< "03 73 01"
};

/// What has no binary form, and a part of what is said about it.
struct RefusedForm {
    FormCommand command;
    std::string message;
};

/// What a successful answer with this payload reads like.
struct ShownForm {
    FormCommand command;
    std::string payload; ///< "03 07"
    std::string text;
};

/// A payload that cannot be one to the command, and a part of what is said about it.
struct MalformedForm {
    FormCommand command;
    std::string payload;
    std::string message;
};

void PrintTo(const SentForm& row, std::ostream* out);
void PrintTo(const RefusedForm& row, std::ostream* out);
void PrintTo(const ShownForm& row, std::ostream* out);
void PrintTo(const MalformedForm& row, std::ostream* out);

class FormIsSent : public testing::TestWithParam<SentForm> {};
class FormIsRefused : public testing::TestWithParam<RefusedForm> {};
class FormIsShown : public testing::TestWithParam<ShownForm> {};
class FormIsMalformed : public testing::TestWithParam<MalformedForm> {};

/// So many bytes "5A" or the like.
std::string repeated(const std::string& digits, std::size_t count);

} // namespace station

#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <ostream>
#include <string>

#include "client/BinaryRequest.h"

namespace station {

// Tables of the binary forms, one row a case: each command's test has these four and ends in FORM_TESTS.
// A command is a line as a shell takes it, bytes are "03 73 01".

/// What a command is sent as.
struct SentForm {
    std::string command;
    std::string frame;

    friend void PrintTo(const SentForm& row, std::ostream* out) { *out << row.command; }
};

/// What has no binary form, and a part of what is said about it.
struct RefusedForm {
    std::string command;
    std::string message;

    friend void PrintTo(const RefusedForm& row, std::ostream* out) { *out << row.command; }
};

/// What a successful answer with this payload reads like.
struct ShownForm {
    std::string command;
    std::string payload;
    std::string text;

    friend void PrintTo(const ShownForm& row, std::ostream* out) { *out << row.command; }
};

/// A payload that cannot be one to the command, and a part of what is said about it.
struct MalformedForm {
    std::string command;
    std::string payload;
    std::string message;

    friend void PrintTo(const MalformedForm& row, std::ostream* out) { *out << row.command; }
};

class FormIsSent : public testing::TestWithParam<SentForm> {};
class FormIsRefused : public testing::TestWithParam<RefusedForm> {};
class FormIsShown : public testing::TestWithParam<ShownForm> {};
class FormIsMalformed : public testing::TestWithParam<MalformedForm> {};

#define FORM_TESTS(Command)                                                        \
    INSTANTIATE_TEST_SUITE_P(Command, FormIsSent, testing::ValuesIn(kSent));       \
    INSTANTIATE_TEST_SUITE_P(Command, FormIsRefused, testing::ValuesIn(kRefused)); \
    INSTANTIATE_TEST_SUITE_P(Command, FormIsShown, testing::ValuesIn(kShown));     \
    INSTANTIATE_TEST_SUITE_P(Command, FormIsMalformed, testing::ValuesIn(kMalformed))

/// The frame of a command.
BinaryRequest encode(const std::string& command);

/// So many bytes "5A" or the like.
std::string repeated(const std::string& digits, std::size_t count);

/// An argument that stands for so many of them.
std::string bytes(const std::string& digits, std::size_t count);

} // namespace station

#pragma once

#include <memory>
#include <string>

#include "ExitCode.h"
#include "client/Answer.h"
#include "client/Failure.h"
#include "transfer/Order.h"
#include "transfer/Watch.h"

namespace station {

/// Tells the caller of the program how a command went: any number of `info` and `frame` calls, then
/// exactly one `answered` or `failed`. Times are milliseconds from the start of the connection.
class Report {
public:
    virtual ~Report() = default;

    /// The message of an Info line or a debug frame, or a note of our own.
    virtual void info(const std::string& message) = 0;

    /// One frame that came back for raw bytes; these frames are the answer.
    virtual void frame(const std::string& hexText) = 0;

    virtual void answered(const Answer& answer, double milliseconds) = 0;
    virtual void failed(const Failure& failure, double milliseconds) = 0;
};

/// The answer on standard output, everything else on standard error at once.
std::unique_ptr<Report> makeTextReport();

/// One object on one line of standard output, when all is known; standard error stays empty.
std::unique_ptr<Report> makeJsonReport(const std::string& name);

/// The same for a transfer: any number of `info` and `note` calls, then exactly one `done` or `failed`.
class TransferReport {
public:
    virtual ~TransferReport() = default;

    /// Something that the unit said.
    virtual void info(const std::string& message) = 0;
    /// Something that the caller has to know about the result.
    virtual void note(const std::string& note) = 0;

    virtual void done(const Figures& figures, double seconds) = 0;
    virtual void failed(const std::string& message, const Figures& figures, double seconds) = 0;
};

std::unique_ptr<TransferReport> makeTextTransferReport();
/// `bytes` are those that are verified; `checksum` is null when there is none.
std::unique_ptr<TransferReport> makeJsonTransferReport(const Order& order);

ExitCode exitCode(const Answer& answer);
ExitCode exitCode(const Failure& failure);

} // namespace station

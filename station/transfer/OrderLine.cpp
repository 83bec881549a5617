#include "transfer/OrderLine.h"

#include <algorithm>
#include <array>

#include "client/Failure.h"
#include "session/OptionLine.h"

namespace station {

namespace {

struct Form {
    Order::Kind kind;
    const char* name;
    const char* word;
    const char* description;
};

constexpr std::array<Form, 4> kForms = {{
    {Order::Kind::Upload, "memory", "upload", "Writes a file into the unit's scratch buffer."},
    {Order::Kind::Download, "memory", "download",
     "Writes a part of the unit's scratch buffer into a file."},
    {Order::Kind::Dump, "blockdev", "dump", "Writes the blocks of a block device into a file."},
    {Order::Kind::Flash, "blockdev", "flash", "Writes a file onto a block device."},
}};

const Form* findForm(const std::string& name, const std::vector<std::string>& arguments) {
    const auto* const form = std::find_if(kForms.begin(), kForms.end(), [&](const Form& candidate) {
        return !arguments.empty() && name == candidate.name && arguments.front() == candidate.word;
    });
    return form == kForms.end() ? nullptr : form;
}

/// The values of the options as they were written.
struct Written {
    std::string type;
    std::string id;
    std::string file;
    std::string at = "0";
    std::string length;
    std::string blocks;
    std::string progress;
};

std::vector<OptionRow> memoryRows(Order::Kind kind, Written& written) {
    const bool download = kind == Order::Kind::Download;
    std::vector<OptionRow> rows = {
        {"FILE", &written.file, "The local file", "", true},
        {"--at", &written.at, "Where it begins in the scratch buffer, in bytes", "OFFSET", download},
    };
    if (download)
        rows.push_back({"--length", &written.length, "How many bytes", "N", true});
    return rows;
}

std::vector<OptionRow> deviceRows(Order::Kind kind, Written& written) {
    std::vector<OptionRow> rows = {
        {"TYPE", &written.type, "disk (177), disc (178), usb (179) or sd (180)", "", true},
        {"ID", &written.id, "Which of them, from 0 on", "", true},
        {"FILE", &written.file, "The local file", "", true},
    };
    if (kind == Order::Kind::Dump)
        rows.push_back(
            {"--blocks", &written.blocks, "Only these, both ends included; default: all", "A..B"});
    else
        rows.push_back({"--at", &written.at, "The first block to write", "BLOCK"});
    return rows;
}

DeviceId parseDevice(const Written& written) {
    constexpr std::uint64_t kLargestId = 255;
    const std::uint64_t id = parseNumber(written.id, "device id");
    if (id > kLargestId)
        throw Failure(Failure::Kind::InvalidRequest,
                      "invalid device id '" + written.id + "': expected 0 to 255");
    return {parseDeviceType(written.type), static_cast<unsigned>(id)};
}

Order orderOf(const Form& form, const Written& written) {
    Order order;
    order.kind = form.kind;
    order.name = std::string(form.name) + ' ' + form.word;
    order.file = written.file;
    order.progress = written.progress;
    switch (form.kind) {
        case Order::Kind::Download:
            order.length = parseNumber(written.length, "length");
            [[fallthrough]];
        case Order::Kind::Upload:
            order.offset = parseNumber(written.at, "offset");
            break;
        case Order::Kind::Dump:
            order.device = parseDevice(written);
            if (!written.blocks.empty())
                order.blocks = parseBlocks(written.blocks);
            break;
        case Order::Kind::Flash:
            order.device = parseDevice(written);
            order.firstBlock = parseBlock(written.at);
            break;
    }
    return order;
}

} // namespace

const char kTransferHelp[] = R"help(
Whole files, cut into requests, verified with the unit's checksum (each has a --help of its own):
  station memory upload FILE --at 0x1000
  station memory download FILE --at 0x1000 --length 4096
  station blockdev dump usb 0 FILE --blocks 0..99
  station blockdev flash sd 1 FILE --at 16
They use the unit's scratch buffer (128 MiB), the block device ones all of it. --timeout is the time for the
connection and then for each request. What differs from its checksum is moved again, up to 4 times in all. A
download or dump is written to FILE.part, which gets its name in the end. A flash writes whole blocks: the
rest of the last one keeps its content. A unit never transfers the last block of a device, and reaches none
from 4 GiB on. --progress bar|plain|none shows how it goes on standard error: by default a bar on a terminal,
a line for each 10 % elsewhere, nothing with --json, which prints name, file, bytes, seconds, retries, checksum
and info. SIGINT and SIGTERM end a transfer in order, with exit code 128 + N; what is incomplete then is said.)help";

bool isTransfer(const std::string& name, const std::vector<std::string>& arguments) {
    return findForm(name, arguments) != nullptr;
}

std::optional<Order> parseOrder(const std::string& name, const std::vector<std::string>& arguments,
                                std::ostream& help) {
    const Form* const form = findForm(name, arguments);
    if (form == nullptr)
        throw Failure(Failure::Kind::InvalidRequest, name + " is no transfer");
    Written written;
    OptionLine line = {
        std::string(form->name) + ' ' + form->word, form->description,
        name == "memory" ? memoryRows(form->kind, written) : deviceRows(form->kind, written)};
    line.rows.push_back(
        {"--progress", &written.progress, "How it is shown on standard error", "auto|bar|plain|none"});
    if (!parseOptions(line, arguments, help))
        return std::nullopt;
    return orderOf(*form, written);
}

} // namespace station

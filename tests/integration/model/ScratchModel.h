#pragma once

#include "model/CommandModel.h"
#include "model/SparseBytes.h"

constexpr std::uint32_t kScratchSize = 0x8000000;

/// The command memory.
class MemoryModel : public CommandModel {
public:
    explicit MemoryModel(SparseBytes& scratch) : m_scratch(scratch) {}

    Answer answer(const Request& request) override;

private:
    struct Access {
        std::uint32_t width;
        std::uint32_t count;
        std::uint32_t address;
        bool isChecked;

        std::uint32_t total() const { return width * count; }
    };

    Answer answerLine(const Words& words);
    Answer answerFrame(const std::string& frame);
    Answer readLine(const Access& access) const;
    Answer writeLine(const Access& access, const Words& words);
    Answer readFrame(const Access& access, const std::string& frame) const;
    Answer writeFrame(const std::string& frame, std::uint32_t width, bool isChecked);

    SparseBytes& m_scratch;
};

/// The command diag.
class ChecksumModel : public CommandModel {
public:
    explicit ChecksumModel(const SparseBytes& scratch) : m_scratch(scratch) {}

    Answer answer(const Request& request) override;

private:
    /// A success with the checksum's four bytes.
    Answer checksum(std::uint32_t type, std::uint32_t offset, std::uint32_t length) const;

    const SparseBytes& m_scratch;
};

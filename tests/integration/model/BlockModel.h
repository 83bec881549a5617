#pragma once

#include <array>
#include <optional>

#include "model/CommandModel.h"
#include "model/SparseBytes.h"

/// A block medium of the unit, whose image can be looked into.
struct MediumPlace {
    std::uint32_t type; ///< as requests name it
    std::uint32_t id;
    const char* path;
    bool isWritable;
};

constexpr std::array<MediumPlace, 4> kMedia = {{{180, 0, "/dev/mnand0", true},
                                                {179, 0, "/dev/umass/umass0", true},
                                                {178, 0, "/dev/cd0", false},
                                                {180, 1, "/dev/fs0", true}}};

constexpr std::uint32_t kBlockSize = 4096;
constexpr std::uint32_t kBlocks = 16384;

/// The command blockdev, in a unit without hard disks whose media are as when they were new.
class BlockModel : public CommandModel {
public:
    explicit BlockModel(SparseBytes& scratch);

    Answer answer(const Request& request) override;

private:
    struct Medium {
        const MediumPlace* place;
        SparseBytes content;
        bool isOpen;
    };
    struct Transfer {
        std::uint32_t first;
        std::uint32_t count;
        std::uint32_t offset;

        std::uint64_t size() const { return std::uint64_t{count} * kBlockSize; }
    };

    Answer answerLine(const Words& words);
    Answer answerFrame(const std::string& frame);
    /// The medium, or why there is none.
    Medium* find(std::int64_t type, std::int64_t id, std::string& reason);
    /// A success with the number of bytes.
    Answer read(Medium& medium, const Transfer& transfer);
    Answer write(Medium& medium, const Transfer& transfer);
    static std::optional<Answer> beyondTheEnd(const Transfer& transfer);

    SparseBytes& m_scratch;
    std::array<Medium, kMedia.size()> m_media;
};

/// The first block of a medium, all that is on a new one. The content of the image. Both throw
/// std::runtime_error.
std::string newFirstBlock(const MediumPlace& place);
std::string imageContent(const MediumPlace& place, std::uint64_t position, std::size_t count);

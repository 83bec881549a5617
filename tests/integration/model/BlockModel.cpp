#include "model/BlockModel.h"

#include <fcntl.h>
#include <unistd.h>

#include <map>
#include <stdexcept>

#include "model/Notation.h"
#include "model/ScratchModel.h"
#include "wire/Descriptor.h"

namespace {

constexpr std::uint64_t kMediumSize = std::uint64_t{kBlocks} * kBlockSize;

constexpr char kNotOpenToRead[] = "Device is not properly opened, file descriptor is invalid";
constexpr char kNotOpenToWrite[] = "Device is not proprely opened, file descriptor is invalid";

Answer operationFailed(const std::string& message) {
    return Answer::failure(message + formatted(", errorCode: %u", kGenericError));
}

std::uint32_t blockNumber(std::int64_t number) {
    constexpr std::int64_t kLargest = 0xFFFFFFFF;
    return static_cast<std::uint32_t>(number < 0 || number > kLargest ? kLargest : number);
}

} // namespace

std::string imageContent(const MediumPlace& place, std::uint64_t position, std::size_t count) {
    const System::Descriptor image(::open(place.path, O_RDONLY | O_CLOEXEC));
    std::string bytes(count, '\0');
    if (!image || ::pread(image.get(), bytes.data(), bytes.size(), static_cast<off_t>(position)) !=
                      static_cast<ssize_t>(bytes.size()))
        throw std::runtime_error(std::string(place.path) + " cannot be read");
    return bytes;
}

std::string newFirstBlock(const MediumPlace& place) {
    // Looked at before anything is written to it.
    static std::map<std::string, std::string> blocks;
    const auto found = blocks.find(place.path);
    return found != blocks.end() ? found->second
                                 : blocks[place.path] = imageContent(place, 0, kBlockSize);
}

BlockModel::BlockModel(SparseBytes& scratch)
    : m_scratch(scratch),
      m_media{{{&kMedia[0], SparseBytes(kMediumSize), false},
               {&kMedia[1], SparseBytes(kMediumSize), false},
               {&kMedia[2], SparseBytes(kMediumSize), false},
               {&kMedia[3], SparseBytes(kMediumSize), false}}} {
    for (Medium& medium : m_media)
        medium.content.write(0, newFirstBlock(*medium.place));
}

Answer BlockModel::answer(const Request& request) {
    return request.isFrame() ? answerFrame(request.wholeFrame()) : answerLine(Words(request.words));
}

BlockModel::Medium* BlockModel::find(std::int64_t type, std::int64_t id, std::string& reason) {
    constexpr std::int64_t kDisc = 178, kStick = 179, kCard = 180;
    for (Medium& medium : m_media)
        if (medium.place->type == type && medium.place->id == id)
            return &medium;
    if (type == kDisc || type == kCard)
        reason = "Device ID does not exist";
    else if (type == kStick)
        reason = "No Device inserted";
    else if (type == 176 || type == 177)
        reason = "Probably due to failures no such Device was registered";
    else
        reason = "Device Type is unknown";
    return nullptr;
}

std::optional<Answer> BlockModel::beyondTheEnd(const Transfer& transfer) {
    if (transfer.first >= kBlocks)
        return operationFailed("Startblock does not Exist on Device");
    if (std::uint64_t{transfer.first} + transfer.count >= kBlocks)
        return operationFailed("Endblock does not exist on Device");
    return std::nullopt;
}

Answer BlockModel::read(Medium& medium, const Transfer& transfer) {
    if (transfer.offset >= kScratchSize)
        return Answer::failure("Memoryoffset out of Range");
    if (!medium.isOpen)
        return operationFailed(kNotOpenToRead);
    if (auto refusal = beyondTheEnd(transfer))
        return *refusal;
    if (transfer.offset + transfer.size() > kScratchSize)
        return operationFailed("Not Enough Memory to save read Data");
    m_scratch.write(transfer.offset,
                    medium.content.read(std::uint64_t{transfer.first} * kBlockSize, transfer.size()));
    return Answer::success(bigEndian32(static_cast<std::uint32_t>(transfer.size())));
}

Answer BlockModel::write(Medium& medium, const Transfer& transfer) {
    if (!medium.isOpen)
        return operationFailed(kNotOpenToWrite);
    if (!medium.place->isWritable)
        return operationFailed("Device is Read-Only declared");
    if (auto refusal = beyondTheEnd(transfer))
        return *refusal;
    if (transfer.offset + transfer.size() > kScratchSize)
        return operationFailed("Number of Bytes to Read overrides internal Memory");
    const std::string data = m_scratch.read(transfer.offset, transfer.size());
    const std::uint64_t position = std::uint64_t{transfer.first} * kBlockSize;
    medium.content.write(position, data);
    Answer answer = Answer::success(bigEndian32(static_cast<std::uint32_t>(transfer.size())));
    answer.effects.push_back({std::string(medium.place->path) + " holds what was written to it",
                              [place = medium.place, position, data] {
                                  return imageContent(*place, position, data.size()) == data;
                              }});
    return answer;
}

Answer BlockModel::answerLine(const Words& words) {
    constexpr std::size_t kPlain = 4, kTransfer = 7;
    if (words.count() < kPlain)
        return Answer::failure("Invalid Command Length");
    std::string reason;
    Medium* medium = find(words.wide(2), words.wide(3), reason);
    if (medium == nullptr)
        return Answer::failure(reason);
    const bool opens = words.begins(1, "open");
    const bool reads = words.begins(1, "read");
    if (!opens && !reads && !words.begins(1, "close") && !words.begins(1, "write"))
        return Answer::failure("Invalid Subcommand");
    const bool transfers = reads || words.begins(1, "write");
    if (words.count() != (transfers ? kTransfer : kPlain))
        return Answer::failure("Invalid Command Length");
    if (!transfers) {
        medium->isOpen = opens;
        return Answer::success("ok");
    }
    const Transfer transfer{blockNumber(words.wide(4)), blockNumber(words.wide(5)),
                            blockNumber(words.wide(6))};
    Answer answer = reads ? read(*medium, transfer) : write(*medium, transfer);
    if (answer.succeeds())
        answer.content = base64Text(answer.content);
    return answer;
}

Answer BlockModel::answerFrame(const std::string& frame) {
    if (frame.size() < 5)
        return Answer::failure("Invalid Command Length");
    std::string reason;
    Medium* medium = find(byteAt(frame, 2), byteAt(frame, 3), reason);
    if (medium == nullptr)
        return Answer::failure(reason);
    const std::uint32_t operation = byteAt(frame, 4);
    if (operation < 1 || operation > 4)
        return Answer::failure("Invalid Subcommand");
    const bool transfers = operation > 2;
    if (frame.size() != (transfers ? 17U : 5U))
        return Answer::failure("Invalid Command Length");
    if (!transfers) {
        medium->isOpen = operation == 1;
        return Answer::success("");
    }
    const Transfer transfer{numberAt(frame, 5), numberAt(frame, 9), numberAt(frame, 13)};
    return operation == 3 ? read(*medium, transfer) : write(*medium, transfer);
}

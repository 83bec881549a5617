#pragma once

#include "TransferTest.h"
#include "support/TestBytes.h"

namespace station {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// A device of 40 blocks of 512 bytes, of which the last cannot be transferred.
class BlockTransferTest : public TransferTest {
protected:
    static constexpr std::size_t kBlock = 512;
    static constexpr std::size_t kBlocks = 40;

    BlockTransferTest() {
        session.blockSize = kBlock;
        session.device = variedBytes(kBlock * kBlocks);
        m_content = session.device;
    }

    Order dump(std::optional<BlockRange> blocks = std::nullopt) const {
        Order order = this->order(Order::Kind::Dump, path("target"));
        order.blocks = blocks;
        return order;
    }

    Order flash(const std::string& bytes, std::uint64_t block = 0) const {
        Order order = this->order(Order::Kind::Flash, fileOf(bytes));
        order.firstBlock = block;
        return order;
    }

    /// The device's content with something else in one place.
    std::string contentWith(const std::string& bytes, std::size_t block) const {
        std::string content = m_content;
        return content.replace(block * kBlock, bytes.size(), bytes);
    }

    std::string m_content;
};

} // namespace station

#include "transfer/Job.h"

#include "client/Failure.h"
#include "transfer/DownloadJob.h"
#include "transfer/DumpJob.h"
#include "transfer/FlashJob.h"
#include "transfer/UploadJob.h"

namespace station {

std::unique_ptr<Job> makeJob(const Order& order) {
    switch (order.kind) {
        case Order::Kind::Upload:
            return std::make_unique<UploadJob>(order);
        case Order::Kind::Download:
            return std::make_unique<DownloadJob>(order);
        case Order::Kind::Dump:
            return std::make_unique<DumpJob>(order);
        case Order::Kind::Flash:
            return std::make_unique<FlashJob>(order);
    }
    return nullptr;
}

void checkBufferRange(std::uint64_t offset, std::uint64_t length) {
    constexpr std::uint64_t kEnd = kBufferSize - 1; // what it transfers ends before the last byte
    if (offset < kEnd && length <= kEnd - offset)
        return;
    throw Failure(Failure::Kind::InvalidRequest,
                  std::to_string(length) + " bytes at " + std::to_string(offset) +
                      " do not fit: the unit transfers the bytes 0 to " + std::to_string(kEnd - 1) +
                      " of its scratch buffer");
}

} // namespace station

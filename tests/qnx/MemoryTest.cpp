// What the system tells of its memory.
#include "platform/Memory.h"

#include <cstdint>

#include "QnxTest.h"

using ::testing::IsEmpty;

namespace {

class QnxMemoryTest : public QnxTest {};

} // namespace

TEST_F(QnxMemoryTest, NothingIsSaidAboutIt) {
    EXPECT_EQ(System::availableMemory(), UINT64_MAX);
    System::keepLittleFreedMemory();
    System::returnFreedMemory();
    EXPECT_THAT(FakeSystem::calls(), IsEmpty());
}

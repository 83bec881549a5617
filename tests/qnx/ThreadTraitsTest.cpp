// Stacks and names of threads.
#include "platform/ThreadTraits.h"

#include <cerrno>
#include <string>

#include "QnxTest.h"

using System::StackPreallocation;

namespace {

class QnxThreadTraitsTest : public QnxTest {
protected:
    QnxThreadTraitsTest() { pthread_attr_init(&m_attributes); }
    ~QnxThreadTraitsTest() override { pthread_attr_destroy(&m_attributes); }

    pthread_attr_t m_attributes;
};

} // namespace

TEST_F(QnxThreadTraitsTest, AStackIsPreallocated) {
    EXPECT_EQ(System::preallocateStack(m_attributes, 0x10000), StackPreallocation::Done);
    EXPECT_CALLS("pthread_attr_setstackprealloc set 65536");
}

TEST_F(QnxThreadTraitsTest, APreallocationThatIsRefusedFails) {
    FakeSystem::next("pthread_attr_setstackprealloc", {EINVAL});
    EXPECT_EQ(System::preallocateStack(m_attributes, 0x10000), StackPreallocation::Failed);
}

TEST_F(QnxThreadTraitsTest, AThreadIsNamed) {
    System::nameThread(pthread_self(), "StatedThread");
    EXPECT_CALLS("pthread_setname_np \"StatedThread\"");
}

TEST_F(QnxThreadTraitsTest, ANameIsCutToWhatTheSystemTakes) {
    System::nameThread(pthread_self(), std::string(99, 'n').c_str());
    System::nameThread(pthread_self(), std::string(100, 'n').c_str());
    const std::string longest = "pthread_setname_np \"" + std::string(99, 'n') + "\"";
    EXPECT_CALLS(longest, longest);
}

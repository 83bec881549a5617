#include "runtime/ThreadAttributes.h"

#include <gtest/gtest.h>

#include "support/PthreadCalls.h"

using System::ThreadAttributes;

TEST(ThreadAttributesTest, HoldTheDocumentedSizes) {
    const ThreadAttributes attributes;
    ASSERT_TRUE(attributes.isValid());
    int state = -1;
    std::size_t guard = 0;
    std::size_t stack = 0;
    pthread_attr_getdetachstate(attributes.get(), &state);
    pthread_attr_getguardsize(attributes.get(), &guard);
    pthread_attr_getstacksize(attributes.get(), &stack);
    EXPECT_EQ(state, PTHREAD_CREATE_DETACHED);
    EXPECT_EQ(guard, 16384u);
    EXPECT_EQ(stack, 262144u);
}

TEST(ThreadAttributesTest, AreInvalidWhenOneCannotBeSet) {
    for (const char* step :
         {"pthread_attr_setdetachstate", "pthread_attr_setguardsize", "pthread_attr_setstacksize"}) {
        SCOPED_TRACE(step);
        PthreadCalls calls;
        calls.fail(step);
        EXPECT_FALSE(ThreadAttributes().isValid());
        EXPECT_EQ(calls.count(step), 1);
    }
}

#include "platform/ThreadTraits.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <string>
#include <thread>

namespace {

/// What a new thread is called after it was given `name`.
std::string nameTaken(const char* name) {
    char taken[64] = {};
    std::thread thread([&] {
        System::nameThread(pthread_self(), name);
        pthread_getname_np(pthread_self(), taken, sizeof taken);
    });
    thread.join();
    return taken;
}

} // namespace

TEST(ThreadTraitsTest, NamesAThreadAsFarAsTheSystemGoes) {
    EXPECT_EQ(nameTaken("worker"), "worker");
    EXPECT_EQ(nameTaken("fifteen letters"), "fifteen letters");
    EXPECT_EQ(nameTaken("sixteen letters!"), "sixteen letters");
    EXPECT_EQ(nameTaken("a name that is far too long for a thread"), "a name that is ");
}

TEST(ThreadTraitsTest, ASystemWithoutPreallocationSaysSoAndChangesNothing) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    std::size_t before = 0;
    std::size_t after = 0;
    pthread_attr_getstacksize(&attributes, &before);
    EXPECT_EQ(System::preallocateStack(attributes, 0x10000), System::StackPreallocation::Unsupported);
    pthread_attr_getstacksize(&attributes, &after);
    EXPECT_EQ(after, before);
    pthread_attr_destroy(&attributes);
}

// SPDX-License-Identifier: MIT
#include "platform/threads.h"

#include "platform/sync.h"

#include <gtest/gtest.h>

#include <pthread.h>

#include <string>
#include <thread>

namespace {

TEST(Threads, RoleBelongsToOneThread) {
    EXPECT_EQ(thread_role(), ThreadRole::unnamed);
    std::string name;
    std::thread([&] {
        set_thread_role(ThreadRole::demux);
        EXPECT_EQ(thread_role(), ThreadRole::demux);
        char text[32] = {};
        pthread_getname_np(pthread_self(), text, sizeof text);
        name = text;
        assert_thread(ThreadRole::demux);
    }).join();
    EXPECT_EQ(name, "vyx-demux");
    EXPECT_EQ(thread_role(), ThreadRole::unnamed);
    assert_thread(ThreadRole::main);
}

#ifndef NDEBUG
TEST(ThreadsDeathTest, NamedThreadMayNotDoAnothersWork) {
    EXPECT_DEATH(
        {
            set_thread_role(ThreadRole::video);
            assert_thread(ThreadRole::main);
        },
        "current_role");
}
#endif

TEST(Sync, WaitEndsWithASignalOrItsTime) {
    const MutexPtr mutex = make_mutex();
    const CondPtr cond = make_cond();
    bool ready = false;
    std::thread other([&] {
        const MutexLock lock(mutex);
        ready = true;
        SDL_CondSignal(cond.get());
    });
    {
        MutexLock lock(mutex);
        while (!ready)
            lock.wait(cond);
    }
    other.join();
    MutexLock lock(mutex);
    lock.wait_for(cond, 5);  // nobody signals
    EXPECT_TRUE(ready);
}

}  // namespace

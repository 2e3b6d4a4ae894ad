// SPDX-License-Identifier: MIT
#include "player/packet_queue.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

namespace {

PacketPtr make_packet(int size, int number = 0) {
    PacketPtr packet(av_packet_alloc());
    av_new_packet(packet.get(), size);
    std::memset(packet->data, number, static_cast<std::size_t>(size));
    packet->pts = number;
    return packet;
}

class PacketQueueTest : public ::testing::Test {
  protected:
    void SetUp() override { packet_queue_init(&queue_); }
    void TearDown() override { packet_queue_end(&queue_); }

    void put(int size, int number = 0) {
        ASSERT_EQ(packet_queue_put(&queue_, make_packet(size, number).get()), 0);
    }
    int get() { return packet_queue_get(&queue_, out_.get(), false); }

    PacketQueue queue_;
    PacketPtr out_{av_packet_alloc()};
};

TEST_F(PacketQueueTest, FirstInFirstOut) {
    EXPECT_EQ(get(), 0);
    put(10, 1);
    put(20, 2);
    put(30, 3);
    EXPECT_EQ(queue_.packet_count, 3);
    EXPECT_EQ(queue_.byte_size, 60) << "payload alone";
    for (int number = 1; number <= 3; ++number) {
        ASSERT_EQ(get(), 1);
        EXPECT_EQ(out_->pts, number);
        EXPECT_EQ(out_->size, number * 10);
        EXPECT_EQ(out_->data[0], number);
    }
    EXPECT_EQ(get(), 0);
    EXPECT_EQ(queue_.packet_count, 0);
    EXPECT_EQ(queue_.byte_size, 0);
    EXPECT_EQ(queue_.first, nullptr);
    EXPECT_EQ(queue_.last, nullptr);
    put(5, 9);
    ASSERT_EQ(get(), 1) << "an emptied queue works again";
}

TEST_F(PacketQueueTest, TakesOverThePayload) {
    const PacketPtr packet = make_packet(8, 1);
    const std::uint8_t* data = packet->data;
    packet_queue_put(&queue_, packet.get());
    EXPECT_EQ(packet->data, nullptr);
    get();
    EXPECT_EQ(out_->data, data) << "no copy";
}

TEST_F(PacketQueueTest, CopiesAPayloadThatNobodyOwns) {
    std::uint8_t borrowed[8] = {1, 2, 3};
    const PacketPtr packet(av_packet_alloc());
    packet->data = borrowed;
    packet->size = sizeof borrowed;
    packet_queue_put(&queue_, packet.get());
    get();
    EXPECT_NE(out_->data, borrowed);
    EXPECT_EQ(std::memcmp(out_->data, borrowed, sizeof borrowed), 0);
}

TEST_F(PacketQueueTest, FlushPacketIsKnownByItsData) {
    EXPECT_STREQ(reinterpret_cast<const char*>(flush_packet()->data), "FLUSH");
    EXPECT_EQ(flush_packet()->size, 0);
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(packet_queue_put(&queue_, flush_packet()), 0);
        ASSERT_EQ(get(), 1);
        EXPECT_TRUE(is_flush_packet(out_.get()));
        EXPECT_EQ(out_->data, flush_packet()->data) << "never a copy";
        EXPECT_FALSE(is_empty_packet(out_.get()));
    }
    put(3);
    get();
    EXPECT_FALSE(is_flush_packet(out_.get()));
}

TEST_F(PacketQueueTest, EndOfFileDoesNotPileUp) {
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(packet_queue_put_empty(&queue_, 3), 0);
    EXPECT_EQ(queue_.packet_count, 1);
    EXPECT_EQ(queue_.byte_size, 0);
    ASSERT_EQ(get(), 1);
    EXPECT_TRUE(is_empty_packet(out_.get()));
    EXPECT_EQ(out_->stream_index, 3);
    put(4);
    packet_queue_put_empty(&queue_, 3);
    EXPECT_EQ(queue_.packet_count, 2);
}

TEST_F(PacketQueueTest, FlushEmptiesIt) {
    put(10);
    put(20);
    packet_queue_flush(&queue_);
    EXPECT_EQ(queue_.packet_count, 0);
    EXPECT_EQ(queue_.byte_size, 0);
    EXPECT_EQ(get(), 0);
    packet_queue_abort(&queue_);
    packet_queue_flush(&queue_);
    EXPECT_EQ(get(), -1) << "the abort request stays";
}

TEST_F(PacketQueueTest, AbortComesBeforeWaitingPackets) {
    put(10);
    EXPECT_FALSE(packet_queue_aborted(&queue_));
    packet_queue_abort(&queue_);
    EXPECT_TRUE(packet_queue_aborted(&queue_));
    EXPECT_EQ(get(), -1);
    EXPECT_EQ(packet_queue_get(&queue_, out_.get(), true), -1);
}

// A thread that waits for a packet.
class Waiter {
  public:
    Waiter(PacketQueue& queue, AVPacket* out)
        : thread_([this, &queue, out] {
              thread_id_ = gettid();
              result_ = packet_queue_get(&queue, out, true);
          }) {}

    // Returns once the thread sleeps, which it does nowhere but in the queue.
    bool await_sleep() const {
        constexpr int enough = 5;
        int asleep = 0;
        for (int i = 0; i < 20000 && asleep < enough; ++i) {
            asleep = state() == 'S' ? asleep + 1 : 0;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return asleep == enough;
    }

    int result() {
        thread_.join();
        return result_;
    }

  private:
    // As the kernel tells it: S for asleep.
    char state() const {
        if (thread_id_ == 0) return '?';
        std::ifstream file("/proc/self/task/" + std::to_string(thread_id_) + "/stat");
        std::string text{std::istreambuf_iterator<char>(file), {}};
        const std::size_t name = text.rfind(") ");
        return name == std::string::npos ? '?' : text[name + 2];
    }

    std::atomic<int> thread_id_{0};
    int result_ = 7;
    std::thread thread_;
};

TEST_F(PacketQueueTest, AbortWakesAWaiter) {
    Waiter waiter(queue_, out_.get());
    EXPECT_TRUE(waiter.await_sleep());
    packet_queue_abort(&queue_);
    EXPECT_EQ(waiter.result(), -1);
}

TEST_F(PacketQueueTest, PacketWakesAWaiter) {
    Waiter waiter(queue_, out_.get());
    EXPECT_TRUE(waiter.await_sleep());
    put(10, 4);
    EXPECT_EQ(waiter.result(), 1);
    EXPECT_EQ(out_->pts, 4);
}

TEST_F(PacketQueueTest, TwoThreads) {
    constexpr int count = 2000;
    std::thread producer([&] {
        for (int i = 0; i < count; ++i)
            packet_queue_put(&queue_, make_packet(i % 50 + 1, i).get());
    });
    for (int i = 0; i < count; ++i) {
        ASSERT_EQ(packet_queue_get(&queue_, out_.get(), true), 1);
        ASSERT_EQ(out_->pts, i);
    }
    producer.join();
    EXPECT_EQ(queue_.byte_size, 0);
}

}  // namespace

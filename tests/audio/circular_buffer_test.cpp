// SPDX-License-Identifier: MIT
#include "audio/circular_buffer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <bit>
#include <chrono>
#include <climits>
#include <cstdint>
#include <thread>

namespace {

struct Spans {
    float* first = nullptr;
    float* second = nullptr;
    int first_count = -1;
    int second_count = -1;
};

Spans lock(CircularBuffer<float>& ring, int position, int count) {
    Spans s;
    ring.Lock(position, count, &s.first, &s.first_count, &s.second, &s.second_count);
    ring.Unlock();
    return s;
}

/// Writes first_value, first_value + 1, … at the write position.
void write(CircularBuffer<float>& ring, int count, float first_value) {
    const Spans s = lock(ring, ring.WritePosition(), count);
    for (int i = 0; i < s.first_count; ++i)
        ring.Store(s.first[i], first_value++);
    for (int i = 0; i < s.second_count; ++i)
        ring.Store(s.second[i], first_value++);
    ring.IncrementWritePointer(count);
}

TEST(CircularBuffer, StartsWithZerosAtPositionZero) {
    object_ref<CircularBuffer<float>> ring(new CircularBuffer<float>(4096));
    EXPECT_EQ(ring->references(), 1);
    EXPECT_EQ(ring->Capacity(), 4096);
    EXPECT_EQ(ring->WritePosition(), 0);
    for (int i = 0; i < 4096; ++i)
        ASSERT_EQ(ring->Read(i), 0.0F);
}

TEST(CircularBuffer, LocksOneSpanUpToTheEndItself) {
    CircularBuffer<float> ring(8);
    float* const storage = lock(ring, 0, 1).first;
    for (const auto& [position, count] : {std::pair(0, 8), {0, 0}, {3, 5}, {7, 1}, {16 + 5, 3}}) {
        SCOPED_TRACE(position);
        const Spans s = lock(ring, position, count);
        EXPECT_EQ(s.first, storage + position % 8);
        EXPECT_EQ(s.first_count, count);
        EXPECT_EQ(s.second_count, 0);
        EXPECT_EQ(s.second, nullptr) << "left as it was";
    }
}

TEST(CircularBuffer, LocksTwoSpansAcrossTheEnd) {
    CircularBuffer<float> ring(8);
    float* const storage = lock(ring, 0, 1).first;
    const Spans s = lock(ring, 24 + 6, 5);
    EXPECT_EQ(s.first, storage + 6);
    EXPECT_EQ(s.first_count, 2);
    EXPECT_EQ(s.second, storage);
    EXPECT_EQ(s.second_count, 3);
}

TEST(CircularBuffer, NeverHandsOutMoreThanItHolds) {
    CircularBuffer<float> ring(8);
    const Spans s = lock(ring, 6, 100);
    EXPECT_EQ(s.first_count + s.second_count, 8);
    EXPECT_EQ(lock(ring, 0, -1).first_count, 0);
    EXPECT_EQ(CircularBuffer<float>(0).Capacity(), 1);
}

TEST(CircularBuffer, ReadsRelativeToTheWritePosition) {
    CircularBuffer<float> ring(8);
    write(ring, 5, 1.0F);
    EXPECT_EQ(ring.Read(-1), 5.0F);
    EXPECT_EQ(ring.Read(-5), 1.0F);
    EXPECT_EQ(ring.Read(0), 0.0F);
    write(ring, 6, 6.0F);
    EXPECT_EQ(ring.WritePosition(), 11) << "counts on, is not wrapped";
    for (int back = 1; back <= 8; ++back) {
        EXPECT_EQ(ring.Read(-back), static_cast<float>(12 - back));
        EXPECT_EQ(ring.Read(8 - back), static_cast<float>(12 - back)) << "the ring is periodic";
    }
}

TEST(CircularBuffer, EraseClearsTheSamplesAndKeepsThePosition) {
    CircularBuffer<float> ring(8);
    write(ring, 8, 1.0F);
    ring.Erase();
    EXPECT_EQ(ring.WritePosition(), 8);
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(ring.Read(i), 0.0F);
}

// At 48 kHz the position passes 2^31 after two days.
TEST(CircularBuffer, GoesOnAcrossTheEndsOfTheNumberRange) {
    CircularBuffer<float> ring(4096);
    ring.IncrementWritePointer(INT_MAX - 1);
    write(ring, 4, 1.0F);
    EXPECT_EQ(ring.WritePosition(), INT_MIN + 2);
    EXPECT_EQ(ring.Read(-1), 4.0F);
    EXPECT_EQ(ring.Read(-4), 1.0F);
    ring.IncrementWritePointer(INT_MAX - 3);
    EXPECT_EQ(ring.WritePosition(), -2);
    write(ring, 4, 11.0F);
    EXPECT_EQ(ring.WritePosition(), 2);
    for (int back = 1; back <= 4; ++back) {
        EXPECT_EQ(ring.Read(-back), static_cast<float>(15 - back));
    }
    write(ring, 4093, 100.0F);
    EXPECT_EQ(ring.Read(-4093), 100.0F);
    EXPECT_EQ(ring.Read(-4094), 14.0F);
}

/// A sample of which both halves are alike, so that a mixture of two would show.
float twofold(std::uint32_t number) {
    const std::uint32_t half = number & 0x3FFF;
    return std::bit_cast<float>(half << 16 | half);
}

bool is_twofold(float sample) {
    const auto bits = std::bit_cast<std::uint32_t>(sample);
    return bits >> 16 == (bits & 0xFFFF);
}

TEST(CircularBuffer, ReaderBesideTheWriterSeesWholeSamples) {
    constexpr int block = 250;
    CircularBuffer<float> ring(4096);
    std::atomic<bool> done = false;
    std::uint32_t number = 1;
    std::thread writer([&] {
        while (!done) {
            const Spans s = lock(ring, ring.WritePosition(), block);
            for (int i = 0; i < s.first_count; ++i)
                ring.Store(s.first[i], twofold(number++));
            for (int i = 0; i < s.second_count; ++i)
                ring.Store(s.second[i], twofold(number++));
            ring.IncrementWritePointer(block);
        }
    });
    long mixed = 0;
    long changes = 0;
    float latest = 0.0F;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (changes < 1000 && std::chrono::steady_clock::now() < deadline) {
        for (int back = 1; back <= 4096; ++back)
            mixed += !is_twofold(ring.Read(-back));
        const float now = ring.Read(-1);
        changes += now != latest;
        latest = now;
    }
    done = true;
    writer.join();
    EXPECT_EQ(changes, 1000) << "reader and writer ran side by side";
    EXPECT_EQ(mixed, 0);
    for (std::uint32_t back = 1; back <= 4096; ++back) {
        ASSERT_EQ(ring.Read(-static_cast<int>(back)), twofold(number - back));
    }
}

}  // namespace

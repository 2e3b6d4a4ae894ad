// SPDX-License-Identifier: MIT
// Blocks of sound on the output time line, against a model that lays them there in one piece.
#include "audio/allocation_counter.h"
#include "player/clocks.h"
#include "support/sound_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <random>

namespace {

constexpr int buffer_frames = 256;
constexpr int rate = 48000;

// A block as it was when it was loaded. Frames.
struct Loaded {
    Shorts samples;
    std::int64_t start;
    int size;
    int repeat;
    int fade_in;
    int fade_out;
    int span;
};

int frames(int bytes) {
    return bytes / 4;
}

Loaded describe(const AudioBlock& block) {
    const auto* samples = reinterpret_cast<const short*>(block.data.data());
    return {Shorts(samples, samples + block.size / 2),
            block.start / 4,
            frames(block.size),
            block.repeat,
            frames(block.fade_in),
            frames(block.fade_out),
            frames(block.span)};
}

// Adds one time that a block plays to the output.
void lay(std::vector<double>& line, const Loaded& block, std::int64_t start, int rise, int fall) {
    for (int i = 0; i < block.size; ++i) {
        double gain = 1.0;
        if (i < rise) gain = static_cast<double>(i) / rise;
        if (i >= block.size - fall) gain = static_cast<double>(block.size - i - 1) / fall;
        for (int c = 0; c < 2; ++c) {
            const auto at = static_cast<std::size_t>(2 * (start + i) + c);
            if (at < line.size())
                line[at] += gain * block.samples[static_cast<std::size_t>(2 * i + c)];
        }
    }
}

// The output that the blocks make, each placed where the one before it leaves off.
std::vector<double> model(const std::vector<Loaded>& blocks, std::size_t samples) {
    std::vector<double> line(samples);
    std::int64_t start = blocks.front().start;
    int fading = blocks.front().fade_in;  // of the block before
    for (const Loaded& block : blocks) {
        EXPECT_EQ(block.start, start);
        EXPECT_EQ(block.fade_in, std::min(fading, block.size));
        const int step = block.size - block.fade_out;
        std::int64_t at = start;
        int rise = block.fade_in;
        for (int play = 0; play < block.repeat; ++play, at += step) {
            lay(line, block, at, rise, block.fade_out);
            rise = block.fade_out;
        }
        lay(line, block, at, rise, block.repeat > 0 ? 0 : block.fade_out);
        const int span = block.repeat > 0
                             ? (block.repeat + 1) * block.size - block.repeat * block.fade_out
                             : block.size - block.fade_out;
        EXPECT_EQ(block.span, span);
        fading = block.repeat > 0 ? 0 : block.fade_out;
        start += span;
    }
    return line;
}

// Plays a film whose pictures are all over the place, and notes each block as it comes.
class Mixing : public ::testing::TestWithParam<int> {
  protected:
    // Of one size: a block that is shorter than the fade of the one before it is another matter.
    void feed(int seconds) {
        for (int sent = 0; sent < seconds * rate;) {
            Shorts packet(2 * 1500);
            for (short& sample : packet)
                sample = static_cast<short>(static_cast<int>(random_() % 20001) - 10000);
            rig_.put(packet, static_cast<double>(sent) / rate);
            sent += static_cast<int>(packet.size() / 2);
        }
    }

    // A repetition has the samples that were seen before.
    void note_blocks() {
        std::vector<Loaded> found;
        for (std::size_t i = 0; i < 2; ++i) {
            if (!rig_.out().blocks[i].is_loaded()) continue;
            Loaded block = describe(rig_.out().blocks[i]);
            if (block.samples == seen_[i]) continue;
            seen_[i] = block.samples;
            found.push_back(std::move(block));
        }
        if (found.size() == 2 && found[1].start < found[0].start) std::swap(found[0], found[1]);
        blocks_.insert(blocks_.end(), found.begin(), found.end());
    }

    void play(int buffers) {
        std::normal_distribution<double> ahead(0.0, 0.1);
        for (int i = 0; i < buffers; ++i) {
            SoundRig::now += static_cast<std::int64_t>(1e6 * buffer_frames / rate);
            rig_.set_video_clock(rig_.out().decode_clock - ahead(random_));
            const Shorts buffer = rig_.play(buffer_frames);
            heard_.insert(heard_.end(), buffer.begin(), buffer.end());
            note_blocks();
        }
    }

    std::mt19937 random_{5};
    SoundRig rig_;
    std::vector<Loaded> blocks_;
    std::array<Shorts, 2> seen_;
    Shorts heard_;
};

TEST_P(Mixing, EqualsTheModel) {
    rig_.state.playback_speed_index = GetParam();
    rig_.add_film(0.0);
    feed(20);
    play(200);  // past the silence at the start, which the time line does not count
    blocks_.clear();
    heard_.clear();
    const std::int64_t before = rig_.out().output_position / 4;
    play(1500);
    ASSERT_GT(blocks_.size(), 100U);
    ASSERT_EQ(rig_.out().output_position / 4 - before,
              static_cast<std::int64_t>(heard_.size() / 2));

    for (Loaded& block : blocks_)
        block.start -= before;
    const std::vector<double> expected = model(blocks_, heard_.size());
    double worst = 0.0;
    // The first block may overlap with one that is not known.
    const auto known = static_cast<std::size_t>(2 * blocks_[1].start);
    for (std::size_t i = known; i < heard_.size(); ++i)
        worst = std::max(worst, std::abs(heard_[i] - std::clamp(expected[i], -32768.0, 32767.0)));
    EXPECT_LT(worst, 2.0);  // two cuts towards zero
    const auto is_corrected = [](const Loaded& block) { return block.fade_out > 0; };
    EXPECT_GT(std::count_if(blocks_.begin(), blocks_.end(), is_corrected), 30);
}

// Faster, some blocks would be all fade.
INSTANTIATE_TEST_SUITE_P(Speeds, Mixing, ::testing::Values(0, normal_speed_index, 5));

class MixingTones : public Mixing {};

// Steady tones: cuts and repeats may make steps, but not larger ones than twice the tone's own.
TEST_P(MixingTones, CutsDoNotClick) {
    rig_.state.playback_speed_index = GetParam();
    rig_.add_film(0.0);
    constexpr int packet_frames = 1024;
    constexpr double amplitude = 12000.0;
    constexpr double step_per_frame = 2.0 * 3.14159265358979 * 440.0 / rate;
    int at = 0;
    for (int n = 0; n < 900; ++n) {
        Shorts packet;
        for (int i = 0; i < packet_frames; ++i, ++at)
            packet.insert(packet.end(), 2,
                          static_cast<short>(amplitude * std::sin(step_per_frame * at)));
        rig_.put(packet, static_cast<double>(n * packet_frames) / rate);
    }
    play(1500);
    int largest = 0;
    for (std::size_t i = 2000; i < heard_.size(); ++i)
        largest = std::max(largest, std::abs(heard_[i] - heard_[i - 2]));
    EXPECT_GT(largest, amplitude * step_per_frame * 0.9);
    EXPECT_LE(largest, 2.0 * amplitude * step_per_frame);
}

INSTANTIATE_TEST_SUITE_P(Speeds, MixingTones, ::testing::Values(0, normal_speed_index, 9));

TEST(MixingMemory, ABlockTakesNothingFromTheHeap) {
    SoundRig rig;
    // One packet, decoded in the first call, lasts for many blocks.
    rig.put(Shorts(2 * 200000, 1234), 0.0);
    rig.play();
    Shorts buffer(2 * 1024);
    const long before = heap_allocations();
    for (int i = 0; i < 150; ++i)
        audio_callback(&rig.state, reinterpret_cast<Uint8*>(buffer.data()), 4096);
    EXPECT_EQ(heap_allocations(), before);
    EXPECT_EQ(buffer[100], 1234);
    set_thread_role(ThreadRole::unnamed);
}

}  // namespace

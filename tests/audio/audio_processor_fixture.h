// SPDX-License-Identifier: MIT
#pragma once

#include "audio/audio_processor.h"
#include "audio/audio_settings.h"
#include "audio/eq3band.h"
#include "audio/instruments.h"
#include "audio/noise_reduction.h"
#include "audio/vol_pan_control.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

using Shorts = std::vector<short>;

/// A stream of its own for every test, and the player's stages as they are after start.
class AudioProcessorFixture : public testing::Test {
  protected:
    AudioProcessorFixture() { restore(); }
    ~AudioProcessorFixture() override { restore(); }

    void open(int channels, int sample_rate = 48000) {
        sample_rate_ = sample_rate;
        channels_ = channels;
        in_ = AudioConverter::to_planes(channels, sample_rate);
        out_ = AudioConverter::to_samples(sample_rate);
        left_scope_ = new CircularBuffer<float>(4096);
        right_scope_ = channels > 1 ? new CircularBuffer<float>(4096) : nullptr;
        chain_ = {in_.get(), out_.get(), {left_scope_, right_scope_}};
    }

    /// Processes whole frames of the stream in blocks; returns the stereo that comes out.
    Shorts play(const Shorts& samples, std::size_t block_frames) {
        const auto channels = static_cast<std::size_t>(channels_);
        Shorts result;
        for (std::size_t i = 0; i < samples.size(); i += block_frames * channels) {
            const std::size_t count = std::min(block_frames * channels, samples.size() - i);
            const std::size_t frames = count / channels;
            Shorts block(frames * std::max<std::size_t>(channels, 2));
            std::copy_n(samples.begin() + long(i), count, block.begin());
            process(block, static_cast<int>(frames));
            result.insert(result.end(), block.begin(), block.begin() + long(2 * frames));
        }
        return result;
    }
    Shorts play(const Shorts& samples) { return play(samples, 1024); }

    void process(Shorts& block, int frames) {
        audio_processor(chain_, block.data(), frames, channels_, 2, sample_rate_);
    }

    static void restore() {
        restore_sound_settings();
        vol_pan_control = VolPanControl();
        eq3band[0] = eq3band[1] = Eq3Band();
        audio_noisereduction = NoiseReduction();
    }

    std::unique_ptr<AudioConverter> in_, out_;
    object_ref<CircularBuffer<float>> left_scope_, right_scope_;
    AudioChain chain_;
    int channels_ = 0;
    int sample_rate_ = 0;
};

inline Shorts noise_samples(unsigned seed, int count, double deviation) {
    Shorts samples;
    for (const float x : instruments::noise(seed, count, deviation)) {
        samples.push_back(static_cast<short>(std::clamp(x, -32768.0F, 32767.0F)));
    }
    return samples;
}

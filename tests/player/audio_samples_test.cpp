// SPDX-License-Identifier: MIT
#include "player/audio_samples.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint8_t untouched = 0xA5;

// Random samples in a format, and where its planes lie.
struct Decoded {
    AVSampleFormat format;
    int channels;
    int frames;
    std::vector<Bytes> planes;
    std::vector<const std::uint8_t*> pointers;

    Decoded(AVSampleFormat f, int c, int n, unsigned seed) : format(f), channels(c), frames(n) {
        const bool planar = av_sample_fmt_is_planar(f) != 0;
        const auto width = static_cast<std::size_t>(av_get_bytes_per_sample(f));
        const auto in_plane = static_cast<std::size_t>(planar ? n : n * c);
        std::mt19937 random(seed);
        std::uniform_real_distribution<float> loud(-1.3F, 1.3F);
        for (int i = 0; i < (planar ? c : 1); ++i) {
            Bytes plane(width * in_plane);
            if (av_get_packed_sample_fmt(f) == AV_SAMPLE_FMT_FLT) {
                for (std::size_t k = 0; k < in_plane; ++k) {
                    const float value = loud(random);
                    std::memcpy(plane.data() + k * width, &value, width);
                }
            } else {
                for (auto& byte : plane)
                    byte = static_cast<std::uint8_t>(random());
            }
            planes.push_back(std::move(plane));
        }
        for (const Bytes& plane : planes)
            pointers.push_back(plane.data());
    }

    SampleView view() const { return {format, channels, frames, pointers.data()}; }

    template <class T>
    T at(int frame, int channel) const {
        const bool planar = planes.size() > 1 || channels == 1;
        T value;
        const std::size_t index =
            static_cast<std::size_t>(planar ? frame : frame * channels + channel);
        std::memcpy(&value,
                    &planes[planar ? static_cast<std::size_t>(channel) : 0][index * sizeof(T)],
                    sizeof(T));
        return value;
    }

    // What the rules say of one sample.
    int expected(int frame, int channel) const {
        switch (av_get_packed_sample_fmt(format)) {
            case AV_SAMPLE_FMT_S16:
                return at<std::int16_t>(frame, channel);
            case AV_SAMPLE_FMT_FLT:
                if (channels == 1) return std::clamp(at<std::int32_t>(frame, 0), -32768, 32767);
                return std::clamp(static_cast<int>(at<float>(frame, channel) * 32768.0F), -32768,
                                  32767);
            default:
                return 0;
        }
    }
};

void check(const Decoded& decoded, int first, int capacity) {
    const int fits = capacity / (2 * decoded.channels);
    const int count = std::max(0, std::min(decoded.frames - first, fits));
    const auto bytes = static_cast<std::size_t>(count * decoded.channels * 2);
    Bytes out(static_cast<std::size_t>(capacity) + 64, untouched);
    ASSERT_EQ(interleave_samples(decoded.view(), first, out.data(), capacity),
              static_cast<int>(bytes));
    for (int i = 0; i < count; ++i) {
        for (int c = 0; c < decoded.channels; ++c) {
            short sample;
            std::memcpy(&sample, &out[static_cast<std::size_t>(2 * (i * decoded.channels + c))], 2);
            ASSERT_EQ(sample, decoded.expected(first + i, c)) << "frame " << i << " channel " << c;
        }
    }
    EXPECT_TRUE(std::all_of(out.begin() + static_cast<std::ptrdiff_t>(bytes), out.end(),
                            [](std::uint8_t byte) { return byte == untouched; }));
}

TEST(Samples, EveryFormatBecomesSixteenBitsOrSilence) {
    for (int format = 0; format < AV_SAMPLE_FMT_NB; ++format) {
        for (const int channels : {1, 2, 3, 6, 8}) {
            SCOPED_TRACE(av_get_sample_fmt_name(static_cast<AVSampleFormat>(format)));
            SCOPED_TRACE(channels);
            const Decoded decoded(static_cast<AVSampleFormat>(format), channels, 101,
                                  static_cast<unsigned>(channels));
            check(decoded, 0, 4096);
            check(decoded, 40, 4096);
            check(decoded, 101, 4096);
        }
    }
}

TEST(Samples, NothingIsWrittenPastTheCapacity) {
    for (const AVSampleFormat format : {AV_SAMPLE_FMT_FLTP, AV_SAMPLE_FMT_S16, AV_SAMPLE_FMT_DBL}) {
        for (const int channels : {1, 2, 6}) {
            const Decoded decoded(format, channels, 300, 7);
            for (const int capacity : {0, 1, 3, 4, 50, 401, 1024})
                check(decoded, 0, capacity);
            check(decoded, 250, 1024);
        }
    }
}

TEST(Samples, FloatsOutsideFullScaleAreClipped) {
    constexpr float infinite = std::numeric_limits<float>::infinity();
    const std::vector<float> values = {1.0F,     -1.0F,     0.99999F, 1e30F, -1e30F,
                                       infinite, -infinite, 0.5F,     -0.0F, std::nanf("")};
    const std::vector<short> expected = {32767, -32768, 32767, 32767, -32768,
                                         32767, -32768, 16384, 0,     0};
    const auto* plane = reinterpret_cast<const std::uint8_t*>(values.data());
    std::vector<short> out(values.size());
    const int frames = static_cast<int>(values.size()) / 2;
    ASSERT_EQ(interleave_samples({AV_SAMPLE_FMT_FLT, 2, frames, &plane}, 0,
                                 reinterpret_cast<std::uint8_t*>(out.data()), 1000),
              frames * 4);
    EXPECT_EQ(out, expected);
}

TEST(Samples, WordsOfASingleFloatChannelCountAsIntegers) {
    const std::vector<std::int32_t> words = {0, 5, -7, 40000, -40000, 0x3F000000};
    const auto* plane = reinterpret_cast<const std::uint8_t*>(words.data());
    std::vector<short> out(words.size());
    ASSERT_EQ(interleave_samples({AV_SAMPLE_FMT_FLTP, 1, 6, &plane}, 0,
                                 reinterpret_cast<std::uint8_t*>(out.data()), 1000),
              12);
    EXPECT_EQ(out, (std::vector<short>{0, 5, -7, 32767, -32768, 32767}));
}

TEST(Samples, NoChannelsGiveNothing) {
    const std::uint8_t* plane = nullptr;
    std::uint8_t out = 0;
    EXPECT_EQ(interleave_samples({AV_SAMPLE_FMT_S16, 0, 10, &plane}, 0, &out, 1), 0);
}

}  // namespace

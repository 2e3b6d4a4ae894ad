// SPDX-License-Identifier: MIT
// What the device gets, call by call.
#include "player/audio_decoder.h"
#include "player/clocks.h"
#include "support/sound_rig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <thread>

namespace {

constexpr int rate = 48000;

Shorts noise(int frames, unsigned seed) {
    std::mt19937 random(seed);
    Shorts samples(2 * static_cast<std::size_t>(frames));
    for (short& sample : samples)
        sample = static_cast<short>(static_cast<int>(random() % 20001) - 10000);
    return samples;
}

bool is_silent(const Shorts& samples) {
    return std::all_of(samples.begin(), samples.end(), [](short sample) { return sample == 0; });
}

void append(Shorts& all, const Shorts& more) {
    all.insert(all.end(), more.begin(), more.end());
}

// How many samples at the beginning are 0.
std::size_t silent_samples(const Shorts& samples) {
    const auto loud =
        std::find_if(samples.begin(), samples.end(), [](short sample) { return sample != 0; });
    return static_cast<std::size_t>(loud - samples.begin());
}

void put_all(SoundRig& rig, const Shorts& sound, int packet_frames, double start = 0.0) {
    for (std::size_t at = 0; at < sound.size(); at += 2 * static_cast<std::size_t>(packet_frames)) {
        const std::size_t end =
            std::min(sound.size(), at + 2 * static_cast<std::size_t>(packet_frames));
        rig.put(Shorts(sound.begin() + static_cast<std::ptrdiff_t>(at),
                       sound.begin() + static_cast<std::ptrdiff_t>(end)),
                start + static_cast<double>(at / 2) / rate);
    }
}

TEST(Callback, SoundAloneComesThroughAsItIs) {
    for (const int packet_frames : {1, 37, 1024, 5000, 40000}) {
        for (const int buffer_frames : {64, 1024, 3000}) {
            SoundRig rig;
            const Shorts sound = noise(12000, 1);
            put_all(rig, sound, packet_frames);
            Shorts heard;
            while (heard.size() < sound.size())
                append(heard, rig.play(buffer_frames));
            EXPECT_TRUE(std::equal(sound.begin(), sound.end(), heard.begin()))
                << packet_frames << " " << buffer_frames;
            EXPECT_TRUE(is_silent(
                {heard.begin() + static_cast<std::ptrdiff_t>(sound.size()), heard.end()}));
        }
    }
}

TEST(Callback, SilenceWhenThereIsNothing) {
    SoundRig rig;
    EXPECT_TRUE(is_silent(rig.play()));
    EXPECT_TRUE(is_silent(rig.play(100000)));
    rig.put(noise(100, 1), 0.0);
    EXPECT_FALSE(is_silent(rig.play()));
    EXPECT_TRUE(is_silent(rig.play()));
}

TEST(Callback, OneChannelIsHeardOnBothSides) {
    SoundRig rig({AV_CODEC_ID_PCM_S16LE, 1, rate});
    const Shorts sound = noise(600, 2);
    rig.put(sound, 0.0);
    const Shorts heard = rig.play(1200);
    for (std::size_t i = 0; i < sound.size(); ++i) {
        ASSERT_EQ(heard[2 * i], sound[i]);
        ASSERT_EQ(heard[2 * i + 1], sound[i]);
    }
    EXPECT_FALSE(rig.state.audio_scope[1]);
}

TEST(Callback, EveryChannelOfEightIsHeard) {
    for (std::size_t channel = 0; channel < 8; ++channel) {
        SoundRig rig({AV_CODEC_ID_PCM_S16LE, 8, rate});
        Shorts sound(8 * 1024);
        for (std::size_t i = 0; i < 1024; ++i)
            sound[8 * i + channel] = 8000;
        rig.put(sound, 0.0);
        const Shorts heard = rig.play();
        const int loudest = *std::max_element(heard.begin(), heard.end());
        // The usual down-mix leaves out the channel for low tones, the fourth.
        if (channel == 3) {
            EXPECT_EQ(loudest, 0);
        } else {
            EXPECT_GT(loudest, 1000) << channel;
        }
    }
}

TEST(Callback, MonoFloatsAreSound) {
    SoundRig rig({AV_CODEC_ID_PCM_F32LE, 1, rate});
    const std::vector<float> sound(1024, 0.25F);
    rig.put(sound.data(), sound.size() * sizeof(float), 0.0);
    const Shorts heard = rig.play(900);
    EXPECT_TRUE(std::all_of(heard.begin(), heard.end(), [](short s) { return s == 8192; }));
}

TEST(Callback, PauseIsSilentAndGoesOnWithoutALoss) {
    SoundRig rig;
    const Shorts sound = noise(20000, 3);
    put_all(rig, sound, 1500);
    Shorts heard = rig.play();
    append(heard, rig.play(700));
    rig.state.paused = true;
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(is_silent(rig.play()));
    rig.state.paused = false;
    while (heard.size() < sound.size())
        append(heard, rig.play());
    EXPECT_TRUE(std::equal(sound.begin(), sound.end(), heard.begin()));
}

TEST(Callback, NothingFromBeforeASeekIsHeardAfterIt) {
    for (const bool paused : {false, true}) {
        SoundRig rig;
        put_all(rig, Shorts(2 * 50000, 1111), 9000);
        rig.play();
        rig.state.paused = paused;
        if (paused) rig.play();
        rig.seek(30.0);
        put_all(rig, Shorts(2 * 5000, 2222), 1000, 30.0);
        if (paused) {
            EXPECT_TRUE(is_silent(rig.play()));
        }
        rig.state.paused = false;
        const Shorts heard = rig.play();
        EXPECT_EQ(std::count(heard.begin(), heard.end(), 1111), 0);
        EXPECT_EQ(std::count(heard.begin(), heard.end(), 2222), 2048);
        EXPECT_GT(rig.state.audio_clock, 30.0);
        EXPECT_LT(rig.state.audio_clock, 30.2);
    }
}

TEST(Callback, PositionFollowsSoundAlone) {
    SoundRig rig;
    global_video_pkt_pts = AV_NOPTS_VALUE;
    rig.put(noise(1024, 1), 5.0);
    rig.play(100);
    EXPECT_EQ(global_video_pkt_pts, 5000000);
    rig.add_film(5.0);
    rig.put(noise(1024, 1), 7.0);
    rig.play();
    EXPECT_EQ(global_video_pkt_pts, 5000000);
}

TEST(Callback, TheClockIsTheEndOfWhatWasDecodedAndTwoBuffers) {
    SoundRig rig;
    rig.put(noise(4800, 1), 2.0);
    rig.play();
    rig.play();
    EXPECT_NEAR(rig.out().decode_clock, 2.1, 1e-9);
    EXPECT_NEAR(rig.state.audio_clock, 2.1 + 2.0 * 1024 / rate, 1e-9);
    EXPECT_EQ(rig.state.audio_clock_time, SoundRig::now);
}

TEST(Callback, AFilmsSoundWaitsForTheFirstPicture) {
    SoundRig rig;
    rig.state.video_stream_index = 1;
    put_all(rig, Shorts(2 * 96000, 3333), 1024);
    for (int i = 0; i < 10; ++i)
        EXPECT_TRUE(is_silent(rig.play()));
    rig.add_film(0.0);
    Shorts heard;
    while (heard.size() < 2 * 48000 && (heard.empty() || heard.back() == 0))
        append(heard, rig.play());
    EXPECT_EQ(heard.back(), 3333);
}

TEST(Callback, NotForEver) {
    SoundRig rig;
    rig.state.video_stream_index = 1;
    put_all(rig, Shorts(2 * 96000, 3333), 1024);
    std::size_t waited = 0;
    while (waited < 2 * rate && is_silent(rig.play()))
        waited += 1024;
    EXPECT_NEAR(static_cast<double>(waited), rate, 2048.0);  // a second
}

TEST(Callback, SoundThatStartsLaterThanThePictureIsHeardLater) {
    SoundRig rig;
    rig.add_film(10.0);
    // A packet of 2,000 frames that belongs half a second after the picture; two buffers count.
    put_all(rig, Shorts(2 * 30000, 4444), 2000, 10.5);
    Shorts heard;
    for (int i = 0; i < 40; ++i, SoundRig::now += 21333)
        append(heard, rig.play());
    const double delay = 0.5 + (2000 + 2 * 1024.0) / rate;
    EXPECT_NEAR(static_cast<double>(silent_samples(heard)) / 2.0 / rate, delay, 0.002);
}

TEST(Callback, SoundThatShouldHaveBeenHeardBeforeIsLeftOut) {
    SoundRig rig;
    rig.add_film(10.0);
    // Sound from two seconds before the picture: a seek lands at a key picture.
    Shorts sound;
    for (int i = 0; i < 4 * rate; ++i)
        sound.insert(sound.end(), 2, static_cast<short>(i / 100));
    put_all(rig, sound, 1024, 8.0);
    Shorts heard;
    while (heard.empty() || heard.back() == 0)
        append(heard, rig.play());
    // Heard is what the picture's time asks for, less the block and the two buffers that count.
    const short first = heard[silent_samples(heard)];
    const double expected = 2.0 - 3.0 * 1024 / rate;
    EXPECT_NEAR(first * 100.0 / rate, expected, 0.025);
}

TEST(Callback, ChannelsGoWhereTheStreamSaysTheyAre) {
    // The middle of three in front is heard on both sides; of the usual three the third is the
    // bass.
    for (const std::uint64_t layout : {std::uint64_t{AV_CH_LAYOUT_SURROUND}, std::uint64_t{0}}) {
        SoundRig rig({AV_CODEC_ID_PCM_S16LE, 3, rate, layout});
        Shorts sound;
        for (int i = 0; i < 8192; ++i)
            sound.insert(sound.end(), {0, 0, 10000});
        put_all(rig, sound, 3 * 1024, 0.0);
        Shorts heard;
        for (int i = 0; i < 6; ++i)
            append(heard, rig.play());
        const int middle = layout ? static_cast<int>(10000 * 0.7071 / 1.7071) : 0;
        EXPECT_NEAR(heard[2 * 2048], middle, 2) << layout;
        EXPECT_NEAR(heard[2 * 2048 + 1], middle, 2) << layout;
    }
}

// Some formats give their sound in pieces of less than a millisecond.
TEST(Callback, ShortPiecesAreGathered) {
    SoundRig rig;
    rig.add_film(10.0);
    Shorts sound;
    for (int i = 0; i < 3 * rate; ++i)
        sound.insert(sound.end(), 2, static_cast<short>(1 + i / 10));
    for (int i = 0; i < 3 * rate; i += 40) {
        rig.put(Shorts(sound.begin() + 2 * i, sound.begin() + 2 * std::min(i + 40, 3 * rate)),
                9.0 + static_cast<double>(i) / rate);
    }
    Shorts heard;
    for (int calls = 0; heard.empty() || heard.back() == 0; ++calls) {
        ASSERT_LT(calls, 20) << "a second of sound from before the picture is left out at once";
        append(heard, rig.play());
    }
    EXPECT_GE(rig.out().blocks[0].size, AudioBlock::least_frames * 4);
    const short first = heard[silent_samples(heard)];
    EXPECT_NEAR(first * 10.0 / rate, 1.0, 0.1);
}

TEST(Callback, GarbageIsSilence) {
    for (const AVCodecID codec :
         {AV_CODEC_ID_AAC, AV_CODEC_ID_AC3, AV_CODEC_ID_MP3, AV_CODEC_ID_FLAC}) {
        SoundRig rig({codec, 2, rate});
        ASSERT_EQ(rig.opened, 0);
        for (unsigned i = 0; i < 200; ++i)
            rig.put(noise(static_cast<int>(1 + i % 300), i), 0.02 * i);
        int loudest = 0;
        for (int i = 0; i < 60; ++i) {
            for (const short sample : rig.play())
                loudest = std::max(loudest, std::abs(static_cast<int>(sample)));
        }
        EXPECT_EQ(rig.state.audio_queue.packet_count, 0) << avcodec_get_name(codec);
        EXPECT_EQ(loudest, 0) << avcodec_get_name(codec);
    }
}

TEST(Callback, SoundIsOverWhenNothingIsLeft) {
    SoundRig rig;
    rig.put(noise(3000, 1), 0.0);
    rig.play();
    EXPECT_FALSE(sound_is_over(&rig.state));
    rig.play();
    rig.play();
    rig.play();
    EXPECT_TRUE(sound_is_over(&rig.state));
    rig.put(noise(3000, 1), 1.0);
    rig.play();
    EXPECT_FALSE(sound_is_over(&rig.state));
    SoundRig::now += 3000000;  // the device calls no more
    EXPECT_TRUE(sound_is_over(&rig.state));
}

TEST(Callback, ADecoderThatWasDrainedTakesPacketsAgain) {
    SoundRig rig({AV_CODEC_ID_PCM_S16LE, 2, rate});
    for (int round = 0; round < 3; ++round) {
        rig.put(Shorts(2 * 512, 5555), round);
        packet_queue_put_empty(&rig.state.audio_queue, 0);
        Shorts heard;
        for (int i = 0; i < 3; ++i)
            append(heard, rig.play());
        EXPECT_EQ(std::count(heard.begin(), heard.end(), 5555), 1024) << round;
    }
}

TEST(Callback, ClosingDoesNotWaitForPackets) {
    using Clock = std::chrono::steady_clock;
    SoundRig rig;
    rig.out().wait_until = SDL_GetTicks() + 60000;
    std::thread closer([&rig] { packet_queue_abort(&rig.state.audio_queue); });
    const auto start = Clock::now();
    Shorts block(16384);
    double pts = 0.0;
    EXPECT_EQ(
        audio_decode_frame(&rig.state, reinterpret_cast<std::uint8_t*>(block.data()), 32768, &pts),
        -1);
    EXPECT_LT(std::chrono::duration<double>(Clock::now() - start).count(), 30.0);
    closer.join();
    rig.state.paused = true;
    EXPECT_TRUE(is_silent(rig.play()));
}

struct Device {
    static inline int opens = 0;
    static inline int closes = 0;
    static inline bool works = true;
};

constexpr AudioDevice counting = {[](SDL_AudioSpec*) {
                                      ++Device::opens;
                                      return Device::works;
                                  },
                                  [] {}, [] { ++Device::closes; }};

// Opens a stream of a codec on the counting device. Returns what open_audio does.
int open_counted(AVCodecID codec, int channels, bool device_works, std::string* message,
                 int sample_rate = rate) {
    Device::opens = Device::closes = 0;
    Device::works = device_works;
    VideoState state;
    state.audio_decoder_mutex = make_mutex();
    state.format_context.reset(avformat_alloc_context());
    AVStream* stream = avformat_new_stream(state.format_context.get(), nullptr);
    stream->codecpar->codec_type = AVMEDIA_TYPE_AUDIO;
    stream->codecpar->codec_id = codec;
    stream->codecpar->sample_rate = sample_rate;
    av_channel_layout_default(&stream->codecpar->ch_layout, channels);
    set_audio_device(&counting);
    ::testing::internal::CaptureStderr();
    const int result = open_audio(&state, stream, 0);
    if (result == 0) close_audio(&state);
    *message = ::testing::internal::GetCapturedStderr();
    set_audio_device(nullptr);
    return result;
}

TEST(OpeningSound, ClosesTheDeviceOfAStreamThatCannotBeDecoded) {
    std::string message;
    EXPECT_EQ(open_counted(AV_CODEC_ID_NONE, 2, true, &message), -1);
    EXPECT_EQ(message, "Unsupported codec!\n");
    EXPECT_EQ(Device::opens, 1);
    EXPECT_EQ(Device::closes, 1);
}

TEST(OpeningSound, TellsWhyThereIsNoDevice) {
    std::string message;
    EXPECT_EQ(open_counted(AV_CODEC_ID_PCM_S16LE, 2, false, &message), -1);
    EXPECT_EQ(message.rfind("SDL_OpenAudio: ", 0), 0U) << message;
    EXPECT_EQ(message.back(), '\n');
    EXPECT_EQ(Device::closes, 0);
}

TEST(OpeningSound, RefusesRatesThatNothingHas) {
    for (const int wrong : {0, -1, 1, 1999, 12000001, INT32_MAX}) {
        std::string message;
        EXPECT_EQ(open_counted(AV_CODEC_ID_PCM_S16LE, 2, true, &message, wrong), -1) << wrong;
        EXPECT_EQ(message, "Unsupported codec!\n") << wrong;
        EXPECT_EQ(Device::opens, 0);
    }
    for (const int right : {2000, 384000, 12000000}) {
        std::string message;
        EXPECT_EQ(open_counted(AV_CODEC_ID_PCM_S16LE, 2, true, &message, right), 0) << right;
    }
}

TEST(OpeningSound, RefusesChannelsThatNobodyKnows) {
    std::string message;
    EXPECT_EQ(open_counted(AV_CODEC_ID_PCM_S16LE, 0, true, &message), -1);
    EXPECT_EQ(message, "Unsupported codec!\n");
    EXPECT_EQ(Device::opens, Device::closes);
}

}  // namespace

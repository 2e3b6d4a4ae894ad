// SPDX-License-Identifier: MIT
// Sound of real files through the engine; the test calls for it in the place of a device.
#include "core/settings.h"
#include "player/audio_output.h"
#include "player/video_refresh.h"
#include "support/player_fixture.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <random>
#include <thread>

namespace {

using Shorts = std::vector<short>;

constexpr double chirp_rms = 0.4 * 32768.0 * 0.70710678;

class SoundOfClips : public PlayerTest {
  protected:
    void SetUp() override {
        PlayerTest::SetUp();
        spec_ = {};
        opens_ = closes_ = 0;
        set_audio_device(&device);
    }
    void TearDown() override {
        PlayerTest::TearDown();
        EXPECT_EQ(closes_, opens_.load());
        set_audio_device(nullptr);
    }

    bool await_sound(VideoState* is) {
        return wait_until([&] { return is->audio_stream_index >= 0 || failed(is); }) && !failed(is);
    }

    Shorts call() {
        Shorts buffer(2 * 1024, 0x5555);
        audio_callback(spec_.userdata, reinterpret_cast<Uint8*>(buffer.data()), 4096);
        set_thread_role(ThreadRole::unnamed);
        return buffer;
    }

    // Everything there is to hear of a file without a picture.
    Shorts hear(const std::string& name) {
        VideoState* is = open(name);
        Shorts heard;
        if (!await_sound(is)) return heard;
        const int ends_before = ends();
        wait_until([&] {
            const Shorts buffer = call();
            heard.insert(heard.end(), buffer.begin(), buffer.end());
            return ends() > ends_before;
        });
        EXPECT_GT(ends(), ends_before) << name;
        stream_close(is);
        return heard;
    }

    static inline SDL_AudioSpec spec_{};
    static inline std::atomic<int> opens_{0};
    static inline std::atomic<int> closes_{0};

    static bool open_device(SDL_AudioSpec* spec) {
        spec_ = *spec;
        ++opens_;
        return true;
    }
    static constexpr AudioDevice device = {open_device, [] {}, [] { ++closes_; }};
};

// Level and length of what is not silence at the ends.
struct Heard {
    double seconds = 0.0;
    double rms = 0.0;
};

Heard measure(const Shorts& samples, int rate) {
    std::size_t first = 0;
    std::size_t last = samples.size();
    while (first < last && samples[first] == 0)
        ++first;
    while (last > first && samples[last - 1] == 0)
        --last;
    double sum = 0.0;
    for (std::size_t i = first; i < last; ++i)
        sum += static_cast<double>(samples[i]) * samples[i];
    const auto count = static_cast<double>(last - first);
    return {count / 2.0 / rate, count > 0 ? std::sqrt(sum / count) : 0.0};
}

TEST_F(SoundOfClips, TheDeviceIsAskedForWhatTheCodecGives) {
    VideoState* is = open("sound_rate_22050.wav");
    ASSERT_TRUE(await_sound(is));
    EXPECT_EQ(spec_.freq, 22050);
    EXPECT_EQ(spec_.format, AUDIO_S16SYS);
    EXPECT_EQ(spec_.channels, 2);
    EXPECT_EQ(spec_.samples, 1024);
    EXPECT_EQ(spec_.callback, audio_callback);
    EXPECT_EQ(spec_.userdata, is);
    EXPECT_EQ(is->audio->hardware_bytes, 4096);
    EXPECT_NEAR(is->audio->sync_threshold, 2048.0 / 22050.0, 1e-12);
    EXPECT_EQ(is->audio->sync_coefficient, 0.0005);
    EXPECT_EQ(is->audio_info.codec_name, "pcm_s16le");
    EXPECT_EQ(is->audio_info.channels, 2);
    EXPECT_EQ(is->audio_info.bit_rate, 22050 * 32);
    ASSERT_TRUE(is->audio_scope[0] && is->audio_scope[1]);
    EXPECT_EQ(is->audio_scope[0]->Capacity(), 4096);
}

TEST_F(SoundOfClips, EveryRateIsHeardInFull) {
    for (const int rate : {8000, 11025, 22050, 44100, 96000, 192000}) {
        const Heard heard = measure(hear("sound_rate_" + std::to_string(rate) + ".wav"), rate);
        EXPECT_NEAR(heard.seconds, 2.0, 0.01) << rate;
        EXPECT_NEAR(heard.rms, chirp_rms, chirp_rms * 0.02) << rate;
    }
}

TEST_F(SoundOfClips, EverySampleFormatIsHeardInFull) {
    for (const char* name :
         {"f32.wav", "s16p.wv", "fltp.wv", "u8.wav", "s32.wav", "f64.wav", "s32p.wv"}) {
        const Heard heard = measure(hear(std::string("sound_format_") + name), 48000);
        EXPECT_NEAR(heard.seconds, 1.0, 0.01) << name;
        EXPECT_NEAR(heard.rms, chirp_rms, chirp_rms * 0.02) << name;
    }
}

TEST_F(SoundOfClips, EveryCodecIsHeardInFull) {
    for (const char* name :
         {"aac_mono.m4a", "aac_stereo.m4a", "mp3_mono.mp3", "mp3_stereo.mp3", "vorbis_mono.ogg",
          "vorbis_stereo.ogg", "opus_mono.opus", "opus_stereo.opus", "flac_mono.flac",
          "flac_stereo.flac", "ac3_mono.ac3", "ac3_stereo.ac3"}) {
        const Heard heard = measure(hear(std::string("sound_") + name), 48000);
        EXPECT_NEAR(heard.seconds, 2.0, 0.1) << name;
        EXPECT_NEAR(heard.rms, chirp_rms, chirp_rms * 0.03) << name;
    }
}

TEST_F(SoundOfClips, ALayoutMayChangeOnTheWay) {
    const Heard heard = measure(hear("layout_change.aac"), 48000);
    EXPECT_NEAR(heard.seconds, 4.0, 0.2);
    EXPECT_GT(heard.rms, 0.5 * chirp_rms);
    EXPECT_LT(heard.rms, 1.1 * chirp_rms);
}

TEST_F(SoundOfClips, CoverArtIsNoFilm) {
    const Heard heard = measure(hear("cover.mp3"), 48000);
    EXPECT_NEAR(heard.seconds, 2.0, 0.1);
}

TEST_F(SoundOfClips, AFilmWhoseSoundCannotBeDecodedShowsItsPictures) {
    ::testing::internal::CaptureStderr();
    VideoState* is = open("undecodable_sound.mkv");
    const auto pictures = take(is);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Unsupported codec!\n");
    EXPECT_EQ(pictures.size(), 100U);
    EXPECT_EQ(is->audio_stream_index, -1);
}

TEST_F(SoundOfClips, WithoutADeviceAFilmShowsItsPictures) {
    static constexpr AudioDevice none = {[](SDL_AudioSpec*) { return false; }, [] {}, [] {}};
    set_audio_device(&none);
    ::testing::internal::CaptureStderr();
    VideoState* is = open("h264.mp4");
    EXPECT_EQ(take(is).size(), 100U);
    VideoState* sound = open("tone.wav");
    EXPECT_TRUE(wait_until([&] { return failed(sound); }));
    const std::string message = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(message.rfind("SDL_OpenAudio: ", 0), 0U);
    EXPECT_NE(message.find(clip("tone.wav") + ": could not open codecs\n"), std::string::npos);
}

TEST_F(SoundOfClips, DamagedPacketsDoNoHarm) {
    VideoState* is = open("broken_sound.mkv");
    ASSERT_TRUE(await_sound(is));
    Shorts heard;
    EXPECT_TRUE(wait_until([&] {
        while (head(is))
            release_picture(is);
        const Shorts buffer = call();
        heard.insert(heard.end(), buffer.begin(), buffer.end());
        return ends() > 0;
    }));
    EXPECT_GT(heard.size(), 100000U);
    EXPECT_LT(measure(heard, 48000).rms, 0.5 * 32768);
}

// A device on a thread of its own, in a hurry.
class ThreadedSound : public SoundOfClips {
  protected:
    void SetUp() override {
        SoundOfClips::SetUp();
        set_audio_device(&threaded);
    }

    static inline std::thread thread_;
    static inline std::atomic<bool> stop_{false};

    static void run() {
        std::vector<Uint8> buffer(4096);
        while (!stop_) {
            spec_.callback(spec_.userdata, buffer.data(), 4096);
            SDL_Delay(1);
        }
    }
    static constexpr AudioDevice threaded = {open_device,
                                             [] {
                                                 stop_ = false;
                                                 thread_ = std::thread(run);
                                             },
                                             [] {
                                                 stop_ = true;
                                                 thread_.join();
                                                 ++closes_;
                                             }};
};

TEST_F(ThreadedSound, SeeksPausesAndClosesAtAnyMoment) {
    std::mt19937 random(9);
    for (int round = 0; round < 8; ++round) {
        VideoState* is = open(round % 2 ? "h264.mkv" : "sound_aac_mono.m4a");
        ASSERT_TRUE(await_sound(is));
        const int actions = static_cast<int>(random() % 40);
        for (int i = 0; i < actions; ++i) {
            switch (random() % 5) {
                case 0:
                    stream_pause(is);
                    break;
                case 1:
                    stream_seek(is, static_cast<std::int64_t>(random() % 3000000), 0);
                    break;
                case 2:
                    is->playback_speed_index = static_cast<int>(random() % 10);
                    break;
                default:
                    if (head(is)) video_refresh_timer(is);
                    break;
            }
            const auto until = SDL_GetTicks() + random() % 20;
            wait_until([until] { return SDL_GetTicks() >= until; });
        }
        stream_close(is);
    }
    EXPECT_EQ(opens_, 8);
}

// The device asks while packets are on their way; closing has to end that.
TEST_F(ThreadedSound, AFileClosesWhileItsSoundIsAwaited) {
    for (int round = 0; round < 5; ++round) {
        VideoState* is = open("sound_pcm_stereo.wav");
        ASSERT_TRUE(await_sound(is));
        is->seek_request = false;
        ASSERT_TRUE(
            wait_until([&] { return is->audio_queue.byte_size == 0 && is->audio_clock > 1.0; }));
        stream_close(is);
    }
}

}  // namespace

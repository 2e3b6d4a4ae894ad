// SPDX-License-Identifier: MIT
// Handles that several threads use at once, each its own or all the same.

#include "videoio/video_fixture.h"

#include <atomic>
#include <functional>
#include <mutex>
#include <set>
#include <thread>

namespace {

void in_threads(unsigned count, const std::function<void(unsigned)>& work) {
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < count; ++i)
        threads.emplace_back(work, i);
    for (std::thread& thread : threads)
        thread.join();
}

TEST(VideoThreads, EveryOneReadsItsOwnFilm) {
    const char* const names[] = {"h264_nob.mp4", "mpeg4_nob.avi", "h264_nob.mp4", "ten_bit.mkv"};
    std::vector<std::vector<TimedBytes>> expected;
    for (const char* name : names)
        expected.push_back(ReadFilm(clip(name)).all(20));
    in_threads(4, [&](unsigned i) {
        ReadFilm film(clip(names[i]));
        for (const TimedBytes& frame : expected[i]) {
            ASSERT_TRUE(film.next());
            EXPECT_EQ(film.frame, frame.bytes) << names[i];
            EXPECT_EQ(film.read.frame_time, frame.seconds);
        }
        EXPECT_EQ(film.seek(0.0), 0);
        EXPECT_TRUE(film.next());
    });
}

TEST(VideoThreads, EveryOneWritesItsOwnFilm) {
    const TemporaryFolder folder;
    const char* const codecs[] = {"avi", "mpeg4", "avi", "apng"};
    in_threads(4, [&](unsigned i) {
        const std::string path = folder.path(std::to_string(i));
        {
            WrittenFilm film(save_args(path, codecs[i], 32, 16));
            for (int k = 0; k < 10; ++k)
                EXPECT_EQ(film.frame(noise(32 * 16 * 3, i), k * 0.04), 0);
        }
        ReadFilm film(path);
        EXPECT_EQ(film.all().size(), 10U) << codecs[i];
    });
}

TEST(VideoThreads, CallsWithOneHandleWaitForEachOther) {
    ReadFilm film(clip("h264_nob.mp4"));
    std::mutex mutex;
    std::multiset<double> times;
    in_threads(3, [&](unsigned) {
        VYX_ReadFrameArgs read = film.read;
        Bytes frame(film.frame.size());
        read.data = frame.data();
        while (read_frame(&read) == 0) {
            const std::lock_guard lock(mutex);
            times.insert(read.frame_time);
        }
    });
    EXPECT_EQ(times.size(), 100U);
    EXPECT_EQ(std::set<double>(times.begin(), times.end()).size(), 100U) << "every frame once";
}

TEST(VideoThreads, ClosingWaitsForACallUnderWay) {
    for (int round = 0; round < 5; ++round) {
        VYX_OpenVideoArgs film = open_args(clip("mjpeg.avi"));
        ASSERT_EQ(open_video(&film), 0);
        std::atomic<int> frames{0};
        std::thread reader([&] {
            Bytes frame(static_cast<std::size_t>(film.frame_bytes));
            VYX_ReadFrameArgs read{};
            read.size = sizeof read;
            read.handle = film.handle;
            read.frame_height = film.frame_height;
            read.frame_width = film.frame_width;
            read.bytes_per_pixel = 3;
            read.data = frame.data();
            while (read_frame(&read) == 0)
                ++frames;
            EXPECT_TRUE(std::string(read.errorMsg) == "Handle not open!\n" || frames == 100)
                << read.errorMsg;
        });
        while (frames < 3)
            std::this_thread::yield();
        close_video(film.handle);
        reader.join();
    }
}

}  // namespace

// SPDX-License-Identifier: MIT
#include "media/film_maker.h"
#include "media/thumbnail_database.h"
#include "platform/threads.h"
#include "support/gl_fixture.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <random>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto deadline = std::chrono::seconds(60);

// The films of the clips again under other names: `count` of them.
std::vector<std::string> many_films(const TemporaryFolder& folder, int count) {
    const char* clips[] = {"h264.mp4", "mpeg4.avi", "h264.mkv", "vp9.webm", "mjpeg.avi"};
    std::vector<std::string> films;
    for (int i = 0; i < count; ++i) {
        const std::string name = clips[i % 5];
        films.push_back(folder.path(std::to_string(i) + name.substr(name.find('.'))));
        std::filesystem::create_symlink(clip(name), films.back());
    }
    return films;
}

// Looks for a film, as drawing does, again and again until it is there; asks for it with `request`.
Thumbnail wait_for(const std::string& film, bool request = true) {
    const auto start = Clock::now();
    for (;;) {
        const Thumbnail found = ThumbnailDatabase::Lookup(film, request);
        if (!found.name.empty() || Clock::now() - start > deadline) return found;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

class ThumbnailWorker : public GlTest {
  protected:
    void TearDown() override {
        stop();
        bAbort = false;
        ThumbnailDatabase::Clear();
        ThumbnailDatabase::Lookup("", false);
        GlTest::TearDown();
    }

    // Returns how long that took.
    static std::chrono::milliseconds stop() {
        const auto start = Clock::now();
        ThumbnailDatabase::Abort();
        ThumbnailDatabase::Join();
        return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
    }
};

TEST_F(ThumbnailWorker, MakesWhatIsAskedFor) {
    ThumbnailDatabase::Start();
    const std::string film = clip("h264.mp4");
    EXPECT_EQ(ThumbnailDatabase::Lookup(film, true).name, "");
    const Thumbnail found = wait_for(film);
    EXPECT_EQ(found.name, film);
    ASSERT_NE(found.texture, nullptr);
    EXPECT_EQ(found.texture->width(), 192);
    EXPECT_EQ(found.flat, 0);
}

TEST_F(ThumbnailWorker, PausesAfterEachBatch) {
    const int before = worker_pauses;
    ThumbnailDatabase::Start();
    wait_for(clip("h264.mp4"));
    const auto start = Clock::now();
    while (worker_pauses == before && Clock::now() - start < deadline)
        std::this_thread::yield();
    EXPECT_GE(worker_pauses, before + 1);
    EXPECT_EQ(worker_pause_ms, 40);
}

TEST_F(ThumbnailWorker, MakesNothingUnasked) {
    ThumbnailDatabase::Start();
    ThumbnailDatabase::Lookup(clip("h264.mp4"), false);
    wait_for(clip("mpeg4.avi"));
    EXPECT_EQ(ThumbnailDatabase::Lookup(clip("h264.mp4"), false).name, "");
}

TEST_F(ThumbnailWorker, BrokenFilmIsTriedOnce) {
    const TemporaryFolder folder;
    const std::string film = folder.path("film.mp4");
    ThumbnailDatabase::Start();
    const Thumbnail found = wait_for(film);
    EXPECT_EQ(found.name, film);
    EXPECT_EQ(found.picture, nullptr);
    std::filesystem::copy(clip("h264.mp4"), film);
    wait_for(clip("mpeg4.avi"));
    EXPECT_EQ(ThumbnailDatabase::Lookup(film, true).picture, nullptr);
}

TEST_F(ThumbnailWorker, WhatWasAskedForBeforeTheStartIsMade) {
    ThumbnailDatabase::Lookup(clip("h264.mp4"), true);
    ThumbnailDatabase::Start();
    // The signals are given for the other film, which comes after it by name.
    EXPECT_NE(wait_for(clip("mpeg4.avi")).picture, nullptr);
    EXPECT_NE(wait_for(clip("h264.mp4"), false).picture, nullptr);
}

TEST_F(ThumbnailWorker, NothingBlocksIt) {
    const TemporaryFolder folder;
    const std::string pipe = folder.path("0_pipe.mp4");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    ThumbnailDatabase::Start();
    ThumbnailDatabase::Lookup(pipe, true);
    ThumbnailDatabase::Lookup("/dev/zero", true);
    EXPECT_NE(wait_for(clip("h264.mp4")).picture, nullptr);
    EXPECT_EQ(wait_for(pipe).picture, nullptr);
    EXPECT_EQ(wait_for("/dev/zero").name, "/dev/zero");
}

TEST_F(ThumbnailWorker, ManyFilmsWhileTheWindowIsDrawn) {
    const TemporaryFolder folder;
    const std::vector<std::string> films = many_films(folder, 40);
    ThumbnailDatabase::Start();
    std::size_t ready = 0;
    const auto start = Clock::now();
    while (ready < films.size() && Clock::now() - start < deadline) {
        ready = 0;
        for (const std::string& film : films) {
            const Thumbnail found = ThumbnailDatabase::Lookup(film, true);
            ready += found.texture != nullptr;
        }
    }
    EXPECT_EQ(ready, films.size());
}

TEST_F(ThumbnailWorker, LookUpWaitsForOneThumbnailAtMost) {
    const TemporaryFolder folder;
    const std::vector<std::string> films = many_films(folder, 10);
    for (const std::string& film : films)
        ThumbnailDatabase::Lookup(film, true);
    const int before = scalers_made;
    scalers_wait = true;
    ThumbnailDatabase::Start();
    const auto start = Clock::now();
    while (scalers_made == before && Clock::now() - start < deadline)
        ThumbnailDatabase::Lookup(films[5], true);
    if (scaler_waits) ThumbnailDatabase::Lookup(films[5], true);
    scalers_wait = false;
    EXPECT_EQ(scalers_made - before, 1);
    stop();
    for (const std::string& film : films) {
        const bool made = !ThumbnailDatabase::Lookup(film, false).name.empty();
        EXPECT_EQ(made, film == films[0]) << film << "; the first by name comes first";
    }
}

TEST_F(ThumbnailWorker, MakesAllThatWaitInOneGo) {
    const TemporaryFolder folder;
    const std::vector<std::string> films = many_films(folder, 10);
    const int before = scalers_made;
    for (const std::string& film : films)
        ThumbnailDatabase::Lookup(film, true);
    ThumbnailDatabase::Start();
    const auto start = Clock::now();
    // One signal, given while the worker waits, is enough for all. One more while it makes the
    // first would wait for that and end the batch: slow machines are given time.
    while (scalers_made == before && Clock::now() - start < deadline) {
        ThumbnailDatabase::Lookup("unknown", true);
        const auto next = Clock::now() + std::chrono::seconds(3);
        while (scalers_made == before && Clock::now() < next)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    while (scalers_made - before < 10 && Clock::now() - start < deadline)
        std::this_thread::yield();
    EXPECT_EQ(scalers_made - before, 10);
}

TEST_F(ThumbnailWorker, EvictsWhileTexturesAreDrawn) {
    const TemporaryFolder folder;
    const std::vector<std::string> films = many_films(folder, 6);
    for (int i = 0; i < 513; ++i) {
        Thumbnail filler;
        filler.name = "filler" + std::to_string(i);
        ThumbnailDatabase::Add(filler);
    }
    ThumbnailDatabase::Start();
    const Thumbnail first = wait_for(films[0]);
    ASSERT_NE(first.texture, nullptr);
    for (const std::string& film : films)
        EXPECT_NE(wait_for(film).texture, nullptr);
    EXPECT_EQ(ThumbnailDatabase::Lookup("filler0", false).name, "") << "gone";
    EXPECT_EQ(ThumbnailDatabase::Lookup(films[0], false).texture, first.texture);
}

TEST_F(ThumbnailWorker, StopsWithinASecondWhateverItDoes) {
    const TemporaryFolder folder;
    const std::vector<std::string> films = many_films(folder, 60);
    std::mt19937 generator(3);
    for (int i = 0; i < 25; ++i) {
        ThumbnailDatabase::Start();
        for (const std::string& film : films)
            ThumbnailDatabase::Lookup(film, true);
        std::this_thread::sleep_for(std::chrono::milliseconds(generator() % 30));
        EXPECT_LT(stop().count(), 1000) << i;  // measured: 0 to 41, the worker's pause
        ThumbnailDatabase::Clear();
    }
}

TEST_F(ThumbnailWorker, StopsAtOnceAfterItsStart) {
    for (int i = 0; i < 200; ++i) {
        ThumbnailDatabase::Start();
        if (i % 2) std::this_thread::yield();
        EXPECT_LT(stop().count(), 1000) << i;
    }
}

TEST_F(ThumbnailWorker, SecondStartAndStopDoNothing) {
    ThumbnailDatabase::Abort();
    ThumbnailDatabase::Join();
    ThumbnailDatabase::Start();
    ThumbnailDatabase::Start();
    EXPECT_NE(wait_for(clip("h264.mp4")).picture, nullptr);
    ThumbnailDatabase::Abort();
    ThumbnailDatabase::Abort();
    ThumbnailDatabase::Start();  // joins the one before
    EXPECT_NE(wait_for(clip("mpeg4.avi")).picture, nullptr);
}

TEST_F(ThumbnailWorker, LookUpsGoOnWithoutIt) {
    ThumbnailDatabase::Start();
    wait_for(clip("h264.mp4"));
    stop();
    EXPECT_NE(ThumbnailDatabase::Lookup(clip("h264.mp4"), true).texture, nullptr);
    const TemporaryFolder folder;  // a name that no other test knows
    EXPECT_EQ(ThumbnailDatabase::Lookup(folder.path("film.avi"), true).name, "");
}

// What was broken off by the end says nothing about the film.
TEST_F(ThumbnailWorker, HalfMadeThumbnailIsNotKept) {
    abort_after_packets = 20;
    ThumbnailDatabase::Start();
    const auto start = Clock::now();
    while (!bAbort && Clock::now() - start < deadline)
        ThumbnailDatabase::Lookup(clip("no_keys.mkv"), true);
    ThumbnailDatabase::Join();
    EXPECT_EQ(ThumbnailDatabase::Lookup(clip("no_keys.mkv"), false).name, "");
    EXPECT_EQ(abort_after_packets, 0);
}

}  // namespace

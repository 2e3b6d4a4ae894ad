// SPDX-License-Identifier: MIT
#pragma once

#include "media/thumbnail_database.h"

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

/// The path of a clip of tests/media/README.md.
std::string clip(const std::string& name);

/// Runs `ffmpeg` with these arguments, in the shell's words; fails the test when that does not
/// work.
void run_ffmpeg(const std::string& arguments);

/// What `ffmpeg` writes to its standard output.
std::vector<std::uint8_t> ffmpeg_output(const std::string& arguments);

/// Packed 24-bit RGB.
struct RgbPicture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> bytes;
};

/// A thumbnail's own copy of its picture; empty when it has none.
RgbPicture pixels(const Thumbnail& thumbnail);

/// The picture that `ffmpeg` shows `seconds` after the start, scaled as thumbnails are.
RgbPicture ffmpeg_picture(const std::string& film, double seconds, int width, int height);

/// Largest and mean difference of two pictures of one size; 255 when they are not.
struct Difference {
    int largest = 255;
    double mean = 255.0;
};
Difference difference(const RgbPicture& a, const RgbPicture& b);

/// `create_thumbnail` for the length of a scope; the picture is freed at its end.
class MadeThumbnail {
  public:
    explicit MadeThumbnail(const std::string& path);
    MadeThumbnail(const std::string& path, int limit_ms);
    ~MadeThumbnail();
    MadeThumbnail(const MadeThumbnail&) = delete;
    MadeThumbnail& operator=(const MadeThumbnail&) = delete;

    const Thumbnail* operator->() const { return &thumbnail_; }
    const Thumbnail& operator*() const { return thumbnail_; }
    double milliseconds() const { return milliseconds_; }

  private:
    Thumbnail thumbnail_;
    double milliseconds_;
};

/// What the library logs while this exists, at its error level.
class LibraryLog {
  public:
    LibraryLog();
    ~LibraryLog();
    LibraryLog(const LibraryLog&) = delete;
    LibraryLog& operator=(const LibraryLog&) = delete;
    std::string text() const;
};

/// Scaling contexts made so far: one per picture examined.
extern std::atomic<int> scalers_made;
/// From now on they are made only while the test's own thread waits for a lock.
extern std::atomic<bool> scalers_wait;
/// One waits so.
extern std::atomic<bool> scaler_waits;
/// From now on scaling contexts cannot be made.
extern std::atomic<bool> scalers_fail;
/// From now on our own allocations from the library's allocator fail.
extern std::atomic<bool> allocations_fail;
/// What SDL's clock says; negative: the time.
extern std::atomic<int> clock_ms;
/// `bAbort` is set when this many more packets have been read from films; 0: never.
extern std::atomic<int> abort_after_packets;
/// Packets read since then.
extern std::atomic<int> packets_after_abort;
/// How often the worker has paused, and for how long it was to the last time.
extern std::atomic<int> worker_pauses;
extern std::atomic<int> worker_pause_ms;

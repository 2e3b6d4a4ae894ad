// SPDX-License-Identifier: MIT
#pragma once

#include "media/ffmpeg_handles.h"

#include <atomic>
#include <chrono>

/// How long a job may take, and a flag that ends it at once.
class Patience {
  public:
    /// `abort` outlives this object.
    Patience(const std::atomic<bool>& abort, std::chrono::milliseconds limit);

    /// Whether the job is to end now. Any thread.
    bool over() const;
    /// Whether half of the time has passed.
    bool half_over() const;

  private:
    using Clock = std::chrono::steady_clock;
    const std::atomic<bool>* abort_;
    Clock::time_point half_;
    Clock::time_point end_;
};

/// A media file that is read to look into it, not to play it.
///
/// Only regular files are opened, so that no pipe or device can block the reader, and nothing that
/// a playlist names. Reading fails from the moment on when the patience is over. [thumbs]
class ThumbnailFile {
  public:
    ThumbnailFile() = default;
    ~ThumbnailFile();
    ThumbnailFile(const ThumbnailFile&) = delete;
    ThumbnailFile& operator=(const ThumbnailFile&) = delete;

    /// Opens the file and reads its header, once per object. `path` is a name in the file system
    /// whatever characters it holds; `patience` outlives this object. False when there is no such
    /// file, or nothing in it that the library knows.
    bool open(const char* path, const Patience& patience);

    /// The opened file.
    AVFormatContext* context() const { return context_.get(); }

  private:
    bool open_descriptor(const char* path);
    bool make_io();
    static int read(void* self, std::uint8_t* buffer, int size);
    static std::int64_t seek(void* self, std::int64_t offset, int whence);

    const Patience* patience_ = nullptr;
    int descriptor_ = -1;
    std::int64_t size_ = 0;
    IoContextPtr io_;
    FormatInputPtr context_;  // freed before what it reads from
};

// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>

struct AVFrame;
class gl_texture_resource;

/// A small picture of a film.
///
/// A copy copies the pointers and owns nothing: picture and texture belong to the entry in the
/// cache.
struct Thumbnail {
    std::string name;                        ///< the file that it was made from
    AVFrame* picture = nullptr;              ///< packed 24-bit RGB; null when there is none
    gl_texture_resource* texture = nullptr;  ///< null until a look-up finds the picture
    std::uint32_t last_use = 0;              ///< SDL's milliseconds at the last look-up; 0: never
    std::uint8_t flat = 0;                   ///< 1 when one of the pictures examined was flat
};

/// The cache holds one entry more than this at most.
inline constexpr std::size_t thumbnail_limit = 512;

/// Ends the worker, and what it is making, soon. Set by `ThumbnailDatabase::Abort`.
extern std::atomic<bool> bAbort;

/// The thumbnails made so far, and the thread that makes missing ones.
///
/// One lock guards all of it. The worker holds it while it makes a thumbnail, so a look-up waits
/// for one being made, but never for two: when somebody waits, the worker makes its pause of 40 ms
/// first. What it left undone it takes up at the next look-up with a request.
class ThumbnailDatabase {
  public:
    /// Starts the worker. Does nothing while one runs that was not told to stop. [main]
    static void Start();

    /// Tells the worker to stop and does not wait for that. What it is making is broken off. [main]
    static void Abort();

    /// Waits for the worker, after `Abort`. The player's end does without. [main]
    static void Join();

    /// The entry of `path`; its texture is made here when the picture waits for one. Without an
    /// entry the result is empty, and with `request` the worker is asked to make one. The result's
    /// texture is good until the next `Lookup`, its picture until the next entry is made. [main]
    static Thumbnail Lookup(std::string path, bool request);

    /// Takes over `t` into the cache. When that is full, the entry used longest ago goes; among
    /// equals the first by name. When there is an entry of that name, it stays and `t` is freed.
    /// [thumbs]
    static void Add(Thumbnail t);

    /// Frees the picture and releases the texture; both become null. A texture is released at the
    /// next look-up, since it belongs to the thread that draws. [thumbs]
    static void Delete(Thumbnail& t);

    /// Empties the cache. [main]
    static void Clear();

  private:
    static int ThreadProc(void* unused);
};

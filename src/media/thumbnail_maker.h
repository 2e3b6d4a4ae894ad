// SPDX-License-Identifier: MIT
#pragma once

#include "media/thumbnail_database.h"

#include <chrono>

/// How long making one thumbnail may take. The drawing thread waits meanwhile.
inline constexpr std::chrono::milliseconds thumbnail_patience{1000};

/// Decodes and scales one representative picture of the film `path`: its first key picture, or,
/// while those are flat, the ones about 4, 8 and 12 s after the start.
///
/// The result's name is `path`. Its picture is the caller's, at most 192 x 144 pixels of packed
/// 24-bit RGB; null when the file is none, has no picture, or is broken, and when `bAbort` is set
/// or `limit` passes before there is one. Key pictures alone are decoded; when there are none,
/// everything is, and after 400 pictures or half of `limit` any picture will do. Messages of memory
/// that ran out go to the library's log. [thumbs]
Thumbnail create_thumbnail(const char* path, std::chrono::milliseconds limit = thumbnail_patience);

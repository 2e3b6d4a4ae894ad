// SPDX-License-Identifier: MIT
#include "player/audio_start.h"

#include "player/audio_blocks.h"
#include "player/audio_sync.h"
#include "player/clocks.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double lost_track = 10.0;   // seconds
constexpr double longest_wait = 1.0;  // seconds, for a picture
constexpr double most_passed = 0.7;   // seconds of sound in one call: decoding takes time

double seconds(const AudioOutput& out, std::int64_t bytes) {
    return static_cast<double>(bytes) / out.bytes_per_second();
}

// Whether a picture is still to come that sets the clock.
bool must_wait(VideoState* is, int len) {
    AudioOutput& out = *is->audio;
    const bool film = is->video_stream_index >= 0 && !is->is_camera;
    if (!film || is->sync_source != sync_video || sound_follows(is)) return false;
    if (seconds(out, out.held_bytes) >= longest_wait) return false;
    out.held_bytes += len;
    return true;
}

// How far ahead the sound would be if it went on now; 0 where the clocks have nothing to do with
// each other.
double seconds_ahead(const VideoState* is) {
    if (!sound_follows(is)) return 0.0;
    const double diff = audio_difference(is);
    return std::abs(diff) < lost_track ? diff : 0.0;
}

std::int64_t whole_frames(const AudioOutput& out, double duration) {
    return std::llround(duration * out.spec.freq) * out.frame_bytes();
}

// Delays the time line, or moves it on.
void shift(VideoState* is, double ahead) {
    AudioOutput& out = *is->audio;
    const double speed = playback_speeds[static_cast<std::size_t>(is->playback_speed_index)];
    const std::int64_t delay = whole_frames(out, ahead > 0.0 ? ahead / speed : ahead);
    const std::int64_t silent = out.silent_bytes + delay;
    out.silent_bytes = std::max<std::int64_t>(silent, 0);
    out.output_position -= std::min<std::int64_t>(silent, 0);
    out.drift = {};
}

}  // namespace

void note_audio_clock(VideoState* is) {
    const AudioOutput& out = *is->audio;
    is->audio_clock =
        out.decode_clock + seconds(out, std::int64_t{2} * out.hardware_bytes - out.silent_bytes);
    is->audio_clock_time = wall_clock();
}

bool start_sound(VideoState* is, int len) {
    if (must_wait(is, len)) return false;
    AudioOutput& out = *is->audio;
    out.forget_blocks();
    AudioBlock& block = out.blocks[0];
    for (double passed = 0.0; passed < most_passed;) {
        double pts = 0.0;
        const int bytes = decode_block(is, block, &pts);
        if (bytes < 1) return false;
        note_audio_clock(is);
        const double ahead = seconds_ahead(is);
        if (-ahead >= seconds(out, bytes)) {  // it should have been heard before now
            passed += seconds(out, bytes);
            continue;
        }
        process_block(is, block, bytes);
        place_block(block, bytes, out.output_position);
        shift(is, ahead);
        note_audio_clock(is);
        out.starting = false;
        out.held_bytes = 0;
        return true;
    }
    return false;
}

void resume_sound(VideoState* is) {
    AudioOutput& out = *is->audio;
    std::int64_t cursor = out.output_position;
    int newest = 0;
    for (const AudioBlock& block : out.blocks) {
        if (!block.is_loaded() || block.end() < cursor) continue;
        cursor = block.end();
        newest = block.span;
    }
    if (newest == 0) {
        out.starting = true;
        return;
    }
    const double ahead = seconds_ahead(is);
    if (ahead == 0.0) return;  // no clock to follow
    // What the audio clock counts as waiting is the newest block; the one before it is still there.
    shift(is, ahead - seconds(out, cursor - out.output_position - newest));
    note_audio_clock(is);
}

// SPDX-License-Identifier: MIT
#include "player/audio_sync.h"

#include "core/settings.h"
#include "player/clocks.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double lost_track = 10.0;      // seconds
constexpr int differences_needed = 20;   // before the first correction
constexpr double drift_window = 1.0;     // seconds
constexpr double drift_allowed = 0.006;  // seconds
constexpr double shortest_fade = 0.002;  // seconds; a shorter one clicks
constexpr double drift_known = 0.2;      // seconds of sound that make it an average

double speed(const VideoState* is) {
    return playback_speeds[static_cast<std::size_t>(is->playback_speed_index)];
}

bool is_normal_speed(const VideoState* is) {
    return is->playback_speed_index == normal_speed_index;
}

// The bytes that a block of `bytes` bytes should play for, for a difference of `diff` seconds,
// within what is tolerable at this speed.
int wanted_length(const VideoState* is, int bytes, double diff) {
    const AudioOutput& out = *is->audio;
    const int frame = out.frame_bytes();
    const double f = 1.0 / speed(is);
    const double clamped = std::clamp(diff, -lost_track, lost_track);
    const int ahead = static_cast<int>(out.spec.freq * clamped) * frame;
    const int least = static_cast<int>(bytes * 0.75 * std::min(f, 1.0)) / frame * frame;
    const int most = static_cast<int>(bytes * 1.25 * std::max(f, 1.0)) / frame * frame;
    return std::clamp(bytes + ahead, least, std::max(least, most));
}

// Cuts or repeats a block.
int correct(const VideoState* is, int bytes, double diff, int& repeat) {
    const int wanted = wanted_length(is, bytes, diff);
    if (wanted < bytes) return wanted;
    if (wanted > bytes) repeat = (bytes / 2 + wanted - 1) / bytes;
    return bytes;
}

// The fades between a block's times are half of it long. Played three times it lasts twice as long
// then, which at half the speed is just enough to keep up and never enough to catch up: where more
// is wanted, the fades are shorter.
AudioCorrection with_fade(const VideoState* is, int size, int repeat, double diff) {
    const int frame = is->audio->frame_bytes();
    int fade = size / 2;
    if (repeat > 1) {
        const int missing = wanted_length(is, size, diff) - (repeat + 1) * size + repeat * fade;
        fade -= std::clamp(missing / repeat, 0, size / 4);
    }
    return {size, repeat, fade / frame * frame};
}

// A block of `bytes` bytes that takes up `span` of the time line, with nothing of it cut: its end
// overlaps with what follows, or it plays again and overlaps with itself.
AudioCorrection with_span(const VideoState* is, int bytes, int span) {
    const int frame = is->audio->frame_bytes();
    const auto fade = [&](int length) { return std::max(length, 0) / frame * frame; };
    if (std::abs(span - bytes) < shortest_fade * is->audio->bytes_per_second())
        return {bytes, 0, 0};
    // What follows may be cut to half a block, and needs room for a fade at its own end.
    if (span <= bytes) return {bytes, 0, fade(std::min(bytes - span, bytes / 5 * 2))};
    // Twice with a fade of at least a quarter, else three times, for which a half is the most.
    if (span <= bytes / 4 * 7) return {bytes, 1, fade(2 * bytes - span)};
    return {bytes, 2, fade(std::clamp((3 * bytes - span) / 2, bytes / 4, bytes / 2))};
}

// Makes a block last `regular` bytes, and shorter or longer for what is left of the drift.
AudioCorrection follow_drift(VideoState* is, int bytes, int regular, double at_least) {
    AudioOutput& out = *is->audio;
    AudioDrift& drift = out.drift;
    const int frame = out.frame_bytes();
    if (drift.weight < drift_known || std::abs(drift.seconds) < at_least) {
        return with_span(is, bytes, regular);
    }
    const double most = static_cast<double>(bytes) / 2.0 / frame;
    const int frames = static_cast<int>(std::clamp(drift.seconds * out.spec.freq, -most, most));
    drift.seconds -= static_cast<double>(frames) / out.spec.freq;
    return with_span(is, bytes, regular + frames * frame);
}

}  // namespace

bool sound_follows(const VideoState* is) {
    switch (is->sync_source) {
        case sync_audio:
            return false;
        case sync_video:
            return is->video_stream_index >= 0 && is->video_clock_seeks == is->seeks_done;
        default:
            return true;
    }
}

double audio_difference(const VideoState* is) {
    const double latency = static_cast<double>(master_settings.audio_latency.getValue());
    return get_audio_clock(is) - (get_master_clock(is) + latency);
}

int synchronize_audio(VideoState* is, int bytes, int& repeat) {
    if (!sound_follows(is)) return bytes;
    AudioOutput& out = *is->audio;
    const double diff = audio_difference(is);
    if (!(diff < lost_track)) {
        out.sync_average = 0.0;
        out.sync_count = 0;
        return bytes;
    }
    out.sync_average = out.sync_coefficient * out.sync_average + diff;
    if (out.sync_count < differences_needed) {
        ++out.sync_count;
        return bytes;
    }
    const double average = out.sync_average * (1.0 - out.sync_coefficient);
    if (std::abs(average) < out.sync_threshold) return bytes;
    return correct(is, bytes, diff, repeat);
}

AudioCorrection correct_block(VideoState* is, int bytes) {
    int repeat = 0;
    const int size = synchronize_audio(is, bytes, repeat);
    if (size != bytes || repeat > 0) return with_fade(is, size, repeat, audio_difference(is));
    return keep_together(is, bytes);
}

AudioCorrection keep_together(VideoState* is, int bytes) {
    if (!sound_follows(is) || is->audio->sync_count < differences_needed) return {bytes, 0, 0};
    if (is_normal_speed(is)) return follow_drift(is, bytes, bytes, drift_allowed);
    // As long as its pictures.
    const int frame = is->audio->frame_bytes();
    const int frames = bytes / frame;
    const int regular = static_cast<int>(frames / speed(is)) * frame;
    return follow_drift(is, bytes, regular, 0.0);
}

void note_drift(VideoState* is, double seconds) {
    AudioDrift& drift = is->audio->drift;
    const double diff = audio_difference(is);
    if (!sound_follows(is) || !(std::abs(diff) < lost_track)) {
        drift = {};
        return;
    }
    drift.weight = std::min(drift.weight + seconds, drift_window);
    drift.seconds += (diff - drift.seconds) * std::min(1.0, seconds / drift.weight);
}

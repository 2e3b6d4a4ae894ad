// SPDX-License-Identifier: MIT
#include "player/audio_blocks.h"

#include "audio/audio_processor.h"
#include "player/audio_decoder.h"
#include "player/audio_fade.h"
#include "player/audio_sync.h"

#include <algorithm>
#include <cstring>

namespace {

short* samples_of(AudioBlock& block) {
    return reinterpret_cast<short*>(block.data.data());
}

// One of the times a block plays. Lengths in bytes.
struct Play {
    std::int64_t start;
    int fade_in;
    int fade_out;

    int flags() const {
        return AudioBlock::loaded | (fade_out > 0 ? AudioBlock::fades_out : 0) |
               (fade_in > 0 ? AudioBlock::fades_in : 0);
    }
};

Play this_play(const AudioBlock& block) {
    return {block.start, block.fade_in, block.fade_out};
}

// The repetition after it overlaps with its end; the last one ends without a fade.
Play next_play(const AudioBlock& block) {
    return {block.start + block.size - block.fade_out, block.fade_out,
            block.repeat > 1 ? block.fade_out : 0};
}

void set_play(AudioBlock& block, const Play& play) {
    block.start = play.start;
    block.fade_in = play.fade_in;
    block.fade_out = play.fade_out;
    block.flags = play.flags();
}

// The mixing of one call of the device.
class Mixing {
  public:
    Mixing(VideoState* is, Uint8* stream, int len)
        : is_(is), out_(*is->audio), stream_(stream), len_(len), cursor_(out_.output_position) {
        for (const AudioBlock& block : out_.blocks)
            cursor_ = std::max(cursor_, block.end());
    }

    int run() {
        while (!(done_[0] && done_[1])) {
            for (const std::size_t i : older_first())
                if (!out_.blocks[i].is_loaded() && !done_[i] && !out_.starting) load(i);
            if (out_.starting) break;  // a seek came up: the clocks place what follows
            if (!out_.blocks[0].is_loaded() && !out_.blocks[1].is_loaded()) break;
            for (const std::size_t i : older_first())
                if (!done_[i]) mix(i);
        }
        out_.output_position += len_;
        return written_;
    }

  private:
    std::array<std::size_t, 2> older_first() const {
        const bool swapped = out_.blocks[1].start < out_.blocks[0].start;
        return swapped ? std::array<std::size_t, 2>{1, 0} : std::array<std::size_t, 2>{0, 1};
    }

    void load(std::size_t i) {
        AudioBlock& block = out_.blocks[i];
        double pts = 0.0;
        const int bytes = decode_block(is_, block, &pts);
        if (bytes < 1) {
            place_block(block, 0, out_.output_position);
            block.flags = 0;
            done_[i] = true;  // for this call
            return;
        }
        process_block(is_, block, bytes);
        const AudioCorrection correction = correct_block(is_, bytes);
        place_block(block, correction.size, cursor_);
        block.repeat = correction.repeat;
        block.fade_out = correction.fade_out;
        const AudioBlock& other = out_.blocks[1 - i];
        if (fades_into_next(other)) {
            block.fade_in = std::min(other.fade_out, block.size);
            block.fade_out = std::min(block.fade_out, block.size - block.fade_in);
        }
        set_play(block, this_play(block));
        block.span = (block.repeat + 1) * block.size - block.repeat * block.fade_out;
        if (block.repeat == 0) block.span -= block.fade_out;
        cursor_ += block.span;
    }

    // Whether the next block starts while the end of this one still fades. It may have been put
    // into this buffer to its end already.
    bool fades_into_next(const AudioBlock& block) const {
        return block.fade_out > 0 && block.repeat == 0 && block.end() == cursor_ &&
               block.start + block.size > out_.output_position;
    }

    void mix(std::size_t i) {
        AudioBlock& block = out_.blocks[i];
        done_[i] = true;
        if (!block.is_loaded() || block.start >= out_.output_position + len_) return;
        const int end = render(block, this_play(block));
        if (block.read_position >= block.size) {
            finish(block, done_[i], end);
        } else if (block.repeat > 0) {
            // The end of the buffer lies in the fade from this time to the next.
            const int read = block.read_position;
            render(block, next_play(block));
            block.read_position = read;
        }
    }

    // Puts the part of a play that lies in the buffer there. Returns where it ends.
    int render(AudioBlock& block, const Play& play) {
        const std::int64_t offset = play.start - out_.output_position;
        const int to = static_cast<int>(std::clamp<std::int64_t>(offset, 0, len_));
        const int from = static_cast<int>(std::clamp<std::int64_t>(to - offset, 0, block.size));
        const int count = std::min(block.size - from, len_ - to);
        copy(block, play, to, from, count);
        block.read_position = from + count;
        return to + count;
    }

    void copy(const AudioBlock& block, const Play& play, int to, int from, int count) {
        if (count == 0) return;
        // Where the end of another block still sounds, nothing may be overwritten.
        const bool plain = play.flags() == AudioBlock::loaded && to >= written_;
        const int silent_end = plain ? to : to + count;
        if (silent_end > written_) {
            std::memset(stream_ + written_, 0, static_cast<std::size_t>(silent_end - written_));
        }
        if (plain) {
            std::memcpy(stream_ + to, block.data.data() + from, static_cast<std::size_t>(count));
        } else {
            fade(block, play, to, from, count);
        }
        written_ = std::max(written_, to + count);
    }

    void fade(const AudioBlock& block, const Play& play, int to, int from, int count) {
        const int frame = out_.frame_bytes();
        auto* copy =
            out_.spec.channels == 1 ? audio_fadeinout_copy_mono : audio_fadeinout_copy_stereo;
        copy(reinterpret_cast<short*>(stream_ + to),
             reinterpret_cast<const short*>(block.data.data()), block.size / frame, from / frame,
             count / frame, play.flags(), play.fade_in / frame, play.fade_out / frame);
    }

    // The block was played to its end, which lies at `end` in the buffer.
    void finish(AudioBlock& block, bool& done, int end) const {
        block.read_position = 0;
        if (block.repeat == 0) {
            block.flags = 0;
            if (end < len_) done = false;  // another one goes there
            return;
        }
        const Play next = next_play(block);
        block.span -= static_cast<int>(next.start - block.start);  // its end stays where it is
        set_play(block, next);
        --block.repeat;
        done = false;
    }

    VideoState* is_;
    AudioOutput& out_;
    Uint8* stream_;
    int len_;
    std::int64_t cursor_;
    int written_ = 0;
    std::array<bool, 2> done_{};
};

}  // namespace

void audio_processor(VideoState* is, short* samples, int n, int channels, int output_channels,
                     int sample_rate) {
    const AudioChain chain = {
        is->resampler_in.get(), is->resampler_out.get(), {is->audio_scope[0], is->audio_scope[1]}};
    audio_processor(chain, samples, n, channels, output_channels, sample_rate);
}

int decode_block(VideoState* is, AudioBlock& block, double* pts) {
    const int frame = is->audio->decoding.channels * 2;
    int filled = 0;
    double time = 0.0;
    while (filled < AudioBlock::least_frames * frame) {
        const int bytes = audio_decode_frame(is, block.data.data() + filled,
                                             AudioBlock::decoded_bytes - filled, &time);
        if (is->audio->starting && filled > 0 && bytes < 0) return bytes;  // a seek came up
        if (bytes < 1 && filled == 0) return bytes;
        if (bytes < 1) break;
        if (filled == 0) *pts = time;
        filled += bytes;
    }
    return filled / frame * is->audio->frame_bytes();
}

void process_block(VideoState* is, AudioBlock& block, int bytes) {
    const AudioOutput& out = *is->audio;
    audio_processor(is, samples_of(block), bytes / out.frame_bytes(), out.decoding.channels,
                    out.spec.channels, out.spec.freq);
}

void place_block(AudioBlock& block, int size, std::int64_t start) {
    block.start = start;
    block.size = size;
    block.span = size;
    block.read_position = 0;
    block.flags = AudioBlock::loaded;
    block.fade_in = block.fade_out = 0;
    block.repeat = 0;
}

int mix_blocks(VideoState* is, Uint8* stream, int len) {
    return Mixing(is, stream, len).run();
}

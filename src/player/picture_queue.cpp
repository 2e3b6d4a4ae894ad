// SPDX-License-Identifier: MIT
#include "player/picture_queue.h"

#include "gpu/gl_texture.h"
#include "gpu/picture_upload.h"
#include "platform/heap.h"
#include "platform/threads.h"
#include "player/refresh_timer.h"
#include "player/side_data.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

namespace {

constexpr int most_queued = 3;  // of four slots one stays on screen
constexpr Uint32 slot_wait_ms = 100;

bool closing(VideoState* is) {
    return is->abort_request || packet_queue_aborted(&is->video_queue);
}

// Whether the film goes on elsewhere meanwhile, and nobody waits for a picture from before. While
// it is scanned every one of them is shown.
bool is_outdated(const VideoState* is, int seeks) {
    return seeks != is->seeks_done && !is->rewind && !is->fast_forward;
}

// Waits until a slot may be written, or until nothing is to be written any more.
void wait_for_free_slot(VideoState* is, int seeks) {
    MutexLock lock(is->picture_queue_mutex);
    while (is->picture_queue_size >= most_queued && !closing(is) && !is_outdated(is, seeks)) {
        lock.wait_for(is->picture_queue_cond, slot_wait_ms);
    }
}

// Has the main thread make the slot's storage. The request is repeated: an event can get lost.
bool wait_for_storage(VideoState* is, VideoPicture& slot, int width, int height) {
    MutexLock lock(is->picture_queue_mutex);
    if (slot.allocated && slot.width == width && slot.height == height) return true;
    slot.allocated = 0;
    is->slot_requested = true;
    is->slot_width = width;
    is->slot_height = height;
    while (!slot.allocated && !closing(is)) {
        push_event(event_alloc_picture, is);
        lock.wait_for(is->picture_queue_cond, slot_wait_ms);
    }
    is->slot_requested = false;
    return slot.allocated != 0;
}

// Keeps the frame itself, or its conversion where pictures do not travel through pixel buffers.
void store(VideoState* is, VideoPicture& slot, FramePtr& frame) {
    if (!is->pbo_supported) {
        SDL_Surface* surface = slot.surface.get();
        SDL_LockSurface(surface);
        fill_picture(is, *frame, static_cast<std::uint8_t*>(surface->pixels), surface->pitch,
                     false);
        SDL_UnlockSurface(surface);
        return;
    }
    if (!slot.frame) {
        auto made = std::make_unique<LibraryFrame>();
        made->frame.reset(av_frame_alloc());
        slot.frame = std::move(made);
    }
    auto& kept = static_cast<LibraryFrame&>(*slot.frame).frame;
    std::swap(kept, frame);
    if (frame) av_frame_unref(frame.get());
}

bool is_known(AVRational ratio) {
    return ratio.num > 0 && ratio.den > 0;
}

// What the container says goes before what the decoder found.
double sample_aspect(const VideoState* is, const AVFrame& frame) {
    const AVRational aspect =
        is_known(is->stream_aspect) ? is->stream_aspect : frame.sample_aspect_ratio;
    return is_known(aspect) ? av_q2d(aspect) : 0.0;
}

void copy_rows(std::uint8_t* to, std::size_t to_stride, const std::uint8_t* from, int from_stride,
               int bytes, int rows) {
    for (int row = 0; row < rows; ++row) {
        std::memcpy(to + static_cast<std::size_t>(row) * to_stride,
                    from + static_cast<std::ptrdiff_t>(row) * from_stride,
                    static_cast<std::size_t>(bytes));
    }
}

void pack_yuv(const AVFrame& frame, std::uint8_t* destination, int row_bytes) {
    const int pitch = row_bytes / 3;
    const auto stride = static_cast<std::size_t>(pitch);
    const int half = pitch / 2;
    copy_rows(destination, stride, frame.data[0], frame.linesize[0], pitch, frame.height);
    std::uint8_t* chroma = destination + stride * static_cast<std::size_t>(frame.height);
    copy_rows(chroma, stride, frame.data[1], frame.linesize[1], half, frame.height / 2);
    copy_rows(chroma + half, stride, frame.data[2], frame.linesize[2], half, frame.height / 2);
}

// A loop for vector instructions: the file is compiled with -O3.
void interleave_row(std::uint8_t* __restrict pairs, const std::uint8_t* u, const std::uint8_t* v,
                    int count) {
    for (int x = 0; x < count; ++x, pairs += 2) {
        pairs[0] = u[x];
        pairs[1] = v[x];
    }
}

void interleave_yuv(const AVFrame& frame, std::uint8_t* destination) {
    const auto stride = static_cast<std::size_t>(frame.width);
    copy_rows(destination, stride, frame.data[0], frame.linesize[0], frame.width, frame.height);
    std::uint8_t* row = destination + stride * static_cast<std::size_t>(frame.height);
    for (int y = 0; y < frame.height / 2; ++y, row += stride) {
        const std::uint8_t* u = frame.data[1] + static_cast<std::ptrdiff_t>(y) * frame.linesize[1];
        const std::uint8_t* v = frame.data[2] + static_cast<std::ptrdiff_t>(y) * frame.linesize[2];
        interleave_row(row, u, v, frame.width / 2);
    }
}

// The means of the squares of four in two rows.
void average_row(std::uint8_t* __restrict means, const std::uint8_t* upper,
                 const std::uint8_t* lower, std::ptrdiff_t count) {
    for (std::ptrdiff_t x = 0; x < count; ++x) {
        const int sum = upper[2 * x] + upper[2 * x + 1] + lower[2 * x] + lower[2 * x + 1];
        means[x] = static_cast<std::uint8_t>((sum + 2) >> 2);
    }
}

// Y, U, V, 0 in the memory's order.
void join_row(std::uint8_t* texels, const std::uint8_t* y, const std::uint8_t* u,
              const std::uint8_t* v, int count) {
    static_assert(std::endian::native == std::endian::little);
    for (int x = 0; x < count; ++x) {
        const auto texel = static_cast<std::uint32_t>(y[x]) |
                           static_cast<std::uint32_t>(u[x]) << 8U |
                           static_cast<std::uint32_t>(v[x]) << 16U;
        std::memcpy(texels + static_cast<std::ptrdiff_t>(4) * x, &texel, sizeof(texel));
    }
}

void halve_yuv(const AVFrame& frame, std::uint8_t* destination) {
    const int width = frame.width / 2;
    std::vector<std::uint8_t> means(static_cast<std::size_t>(width));
    for (int y = 0; y < frame.height / 2; ++y) {
        const auto row = [&](int plane, int index) {
            return frame.data[plane] + static_cast<std::ptrdiff_t>(index) * frame.linesize[plane];
        };
        average_row(means.data(), row(0, 2 * y), row(0, 2 * y + 1), width);
        join_row(destination + static_cast<std::ptrdiff_t>(y) * width * 4, means.data(), row(1, y),
                 row(2, y), width);
    }
}

}  // namespace

bool can_be_shown(int width, int height) {
    if (std::max(width, height) <= texture_size_limit) return true;
    std::fprintf(stderr, "Pictures of %d x %d are larger than OpenGL takes here (%d x %d)!\n",
                 width, height, texture_size_limit, texture_size_limit);
    return false;
}

int queue_picture(VideoState* is, FramePtr& frame, double pts, int seeks) {
    assert_thread(ThreadRole::video);
    wait_for_free_slot(is, seeks);
    if (closing(is)) return -1;
    if (is_outdated(is, seeks)) return 1;
    const bool new_size = frame->width != is->last_width || frame->height != is->last_height;
    is->last_width = frame->width;
    is->last_height = frame->height;
    if (new_size) is->too_large = !can_be_shown(frame->width, frame->height);
    if (is->too_large) return 1;
    VideoPicture& slot = is->pictures[static_cast<std::size_t>(is->picture_queue_windex)];
    if (!wait_for_storage(is, slot, frame->width, frame->height)) return -1;
    if (!is->scaler.supports(*frame)) {
        if (frame->format != is->refused_format) {
            std::fputs("Cannot initialize the conversion context!\n", stderr);
        }
        is->refused_format = frame->format;
        return 1;
    }
    slot.ready = false;
    // The packed form has no room for the odd row and column of chroma.
    slot.yuv_direct = is->pbo_supported && frame->format == AV_PIX_FMT_YUV420P &&
                      frame->width % 2 == 0 && frame->height % 2 == 0;
    is->yuv_direct = slot.yuv_direct;
    slot.sample_aspect = sample_aspect(is, *frame);
    read_motion_vectors(&slot, frame.get(), is->video_codec->codec_id);
    is->quantisers.read(&slot, frame.get(), is->video_codec->codec_id);
    // They are in the slot now: their memory is free for those of the next picture.
    av_frame_remove_side_data(frame.get(), AV_FRAME_DATA_MOTION_VECTORS);
    av_frame_remove_side_data(frame.get(), AV_FRAME_DATA_VIDEO_ENC_PARAMS);
    store(is, slot, frame);
    slot.pts = pts;
    slot.seeks = seeks;
    slot.number = is->pictures_queued++;
    // There is time now: what the program and the film needed to start goes back.
    if (is->pictures_queued == most_queued) trim_heap();
    slot.clear_flags();
    slot.ready = true;
    is->picture_queue_windex = (is->picture_queue_windex + 1) % picture_slots;
    {
        const MutexLock lock(is->picture_queue_mutex);
        ++is->picture_queue_size;
    }
    if (is->starved) hasten_refresh();
    return 0;
}

void alloc_picture(VideoState* is) {
    assert_thread(ThreadRole::main);
    const MutexLock lock(is->picture_queue_mutex);
    if (!is->slot_requested) return;
    VideoPicture& slot = is->pictures[static_cast<std::size_t>(is->picture_queue_windex)];
    slot.surface.reset();
    slot.frame.reset();
    slot.width = is->slot_width;
    slot.height = is->slot_height;
    slot.ready = false;
    slot.clear_flags();
    slot.motion_vectors.clear();
    slot.quantization_table.clear();
    if (is->pbo_supported) {
        make_pixel_buffer(slot);
    } else {
        slot.surface.reset(SDL_CreateRGBSurface(SDL_SWSURFACE, slot.width, slot.height, 24, 0xFF,
                                                0xFF00, 0xFF0000, 0));
    }
    slot.allocated = is->pbo_supported || slot.surface ? 1 : 0;
    is->slot_requested = !slot.allocated;  // without memory it is asked for again
    SDL_CondSignal(is->picture_queue_cond.get());
}

void fill_picture(VideoState* is, const VideoPicture& pic, std::uint8_t* destination,
                  BufferForm form) {
    if (!pic.frame) return;
    const AVFrame& frame = *static_cast<const LibraryFrame&>(*pic.frame).frame;
    if (form == BufferForm::interleaved) {
        interleave_yuv(frame, destination);
    } else if (form == BufferForm::halved) {
        halve_yuv(frame, destination);
    } else {
        fill_picture(is, frame, destination, pic.width * 3, form == BufferForm::packed);
    }
}

void fill_picture(VideoState* is, const AVFrame& frame, std::uint8_t* destination, int row_bytes,
                  bool yuv) {
    if (yuv && frame.format == AV_PIX_FMT_YUV420P) {
        pack_yuv(frame, destination, row_bytes);
    } else {
        is->scaler.convert(frame, destination, row_bytes);
    }
}

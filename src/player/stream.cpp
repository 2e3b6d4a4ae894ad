// SPDX-License-Identifier: MIT
#include "player/stream.h"

#include "core/split_path.h"
#include "gpu/display_geometry.h"
#include "gpu/gl_context.h"
#include "gpu/picture_upload.h"
#include "gpu/texture_cache.h"
#include "media/capture_formats.h"
#include "media/subtitles.h"
#include "platform/heap.h"
#include "platform/threads.h"
#include "player/clocks.h"
#include "player/demux.h"
#include "player/still_picture.h"

#include <algorithm>
#include <deque>
#include <memory>
#include <string_view>

std::atomic<VideoState*> global_video_state{nullptr};

namespace {

constexpr std::size_t longest_name = 1023;

// Late events may carry any of the states that were open while SDL's queue of 127 events filled.
constexpr std::size_t records_kept = 128;

struct Records {
    std::deque<std::unique_ptr<VideoState>> open;
    std::deque<std::unique_ptr<VideoState>> closed;
};

Records& records() {
    // Never destroyed: threads may still run when a library ends the process.
    static auto& all = *new Records;
    return all;
}

void create_locks(VideoState* is) {
    is->demux_mutex = make_mutex();
    is->demux_cond = make_cond();
    is->picture_queue_mutex = make_mutex();
    is->picture_queue_cond = make_cond();
    is->audio_decoder_mutex = make_mutex();
    is->video_decoder_mutex = make_mutex();
}

// "cam:device,key=value,..." names the device and options for its demuxer.
void read_camera_name(VideoState* is, std::string_view text) {
    const auto next_token = [&text] {
        const std::size_t comma = text.find(',');
        const std::string_view token = text.substr(0, comma);
        text.remove_prefix(comma == std::string_view::npos ? text.size() : comma + 1);
        return std::string(token);
    };
    is->filename = next_token();
    while (!text.empty()) {
        const std::string option = next_token();
        const std::size_t equals = option.find('=');
        if (equals == std::string::npos) continue;
        is->open_options.set(option.substr(0, equals).c_str(), option.substr(equals + 1).c_str());
    }
}

void read_name(VideoState* is, std::string_view name) {
    is->filename = name.substr(0, longest_name);
    is->is_camera = is_camera_name(name);
    if (is->is_camera) read_camera_name(is, name.substr(camera_prefix.size()));
}

void set_caption(const char* name, const char* title) {
    std::string file;
    std::string extension;
    _splitpath(name, nullptr, nullptr, &file, &extension);
    SDL_WM_SetCaption((std::string(title) + " - [" + file + extension + "]").c_str(), "");
}

void free_pictures(VideoState* is) {
    for (VideoPicture& pic : is->pictures) {
        pic.rgb = nullptr;
        pic.enhanced = nullptr;
        pic.motion = nullptr;
        pic.motion_vectors.clear();
        pic.quantization_table.clear();
        pic.surface.reset();
        pic.frame.reset();
        delete_pixel_buffer(pic);
    }
    is->staging_texture = nullptr;
    is->output_texture = nullptr;
    is->shown_texture = nullptr;
    is->direct_planes.clear();
    clear_texture_cache();
}

void free_sound(VideoState* is) {
    is->audio.reset();
    is->resampler_in.reset();
    is->resampler_out.reset();
    for (auto& scope : is->audio_scope)
        scope = nullptr;
}

// The library looks at the abort request between system calls. Reads that block, from a pipe or a
// device that stays silent, are broken off.
void end_demux_thread(VideoState* is) {
    constexpr Uint32 patience_ms = 100;
    constexpr Uint32 poll_ms = 1;
    is->abort_request = true;
    const Uint32 start = SDL_GetTicks();
    while (!is->demux_finished) {
        SDL_Delay(poll_ms);
        const bool blocked = SDL_GetTicks() - start > patience_ms;
        const pthread_t thread = is->demux_native;
        if (blocked && thread) interrupt_system_call(thread);
    }
    SDL_WaitThread(is->demux_thread, nullptr);
    is->demux_thread = nullptr;
}

// Moves the record from the open ones to the closed ones. Returns false when it is not open.
bool retire(const VideoState* is) {
    auto& open = records().open;
    const auto found = std::find_if(open.begin(), open.end(),
                                    [is](const auto& record) { return record.get() == is; });
    if (found == open.end()) return false;
    auto& closed = records().closed;
    closed.push_back(std::move(*found));
    open.erase(found);
    if (closed.size() > records_kept) closed.pop_front();
    return true;
}

}  // namespace

VideoState* stream_open(const char* name, const char* title, const AVInputFormat* format,
                        const StreamOptions& options) {
    assert_thread(ThreadRole::main);
    auto owner = std::make_unique<VideoState>();
    VideoState* is = owner.get();
    read_name(is, name);
    is->input_format = format;
    create_locks(is);
    is->pbo_supported = has_pixel_buffers();
    is->loop = options.loop;
    is->preload = options.preload && !is->is_camera;
    is->postprocessing_callback = options.postprocessing_callback;
    flush_packet();
    if (is->preload) stream_pause(is);  // until it is read
    set_caption(name, title);
    subtitles.load(name);
    reset_video_scaling_animation();
    global_video_pkt_pts = AV_NOPTS_VALUE;

    records().open.push_back(std::move(owner));
    global_video_state = is;
    is->demux_thread = SDL_CreateThread(decode_thread, is);
    if (is->demux_thread) return is;
    global_video_state = nullptr;
    retire(is);
    return nullptr;
}

void stream_close(VideoState* is) {
    assert_thread(ThreadRole::main);
    if (!is || !stream_is_open(is)) return;
    end_demux_thread(is);
    free_pictures(is);
    is->scaler.reset();
    is->quantisers = {};
    free_sound(is);
    is->demux_cond.reset();
    is->demux_mutex.reset();
    is->picture_queue_cond.reset();
    is->picture_queue_mutex.reset();
    is->audio_decoder_mutex.reset();
    is->video_decoder_mutex.reset();
    VideoState* current = is;
    global_video_state.compare_exchange_strong(current, nullptr);
    retire(is);
    trim_heap();
}

void close_all_streams() {
    while (!records().open.empty())
        stream_close(records().open.front().get());
}

bool stream_is_open(const VideoState* is) {
    const auto& open = records().open;
    return std::any_of(open.begin(), open.end(),
                       [is](const auto& record) { return record.get() == is; });
}

void stream_seek(VideoState* is, std::int64_t position, int direction) {
    if (is->seek_request) return;
    is->seek_position = position;
    is->seek_flags = direction < 0 ? AVSEEK_FLAG_BACKWARD : 0;
    is->seek_request = true;
    if (!is->demux_mutex) return;  // a record that nothing reads
    const MutexLock lock(is->demux_mutex);
    SDL_CondSignal(is->demux_cond.get());
}

void stream_pause(VideoState* is) {
    const double now = static_cast<double>(wall_clock()) / 1000000.0;
    if (!is->paused) {
        is->video_current_pts = get_video_clock(is);
        is->clocks.pause_start_time = now;
    } else if (!is->fast_forward && !is->rewind) {
        // The clock stood still: it goes on from where it stopped, and so do the due times.
        is->video_current_pts_time = wall_clock();
        // Until there is video the due times belong to the thread that opens it.
        if (is->video_stream_index >= 0) {
            is->clocks.frame_timer += now - is->clocks.pause_start_time;
        }
    }
    is->paused = !is->paused;
    is->fast_forward = false;
    is->rewind = false;
    if (is->paused) is->pause_refresh = true;
    note_activity();
}

void stream_rewind(VideoState* is) {
    stream_pause(is);
    is->rewind = true;
}

void stream_ffw(VideoState* is) {
    stream_pause(is);
    is->fast_forward = true;
}

int decode_interrupt_cb(void* opaque) {
    const auto* is = opaque ? static_cast<const VideoState*>(opaque) : global_video_state.load();
    return is && is->abort_request ? 1 : 0;
}

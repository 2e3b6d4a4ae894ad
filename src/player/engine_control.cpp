// SPDX-License-Identifier: MIT
#include "player/engine_control.h"

#include "gpu/gl_texture.h"
#include "gui/player_control.h"
#include "media/thumbnail_database.h"
#include "platform/window.h"
#include "player/infolabel.h"
#include "player/play_video.h"
#include "player/stream.h"
#include "player/video_refresh.h"

namespace {

constexpr char window_title[] = "VYX Video Player";

class EngineControl final : public PlayerControl {
  public:
    bool is_open() const override { return film() != nullptr; }
    bool is_paused() const override { return film() && film()->paused; }
    bool is_rewinding() const override { return film() && film()->rewind; }
    bool is_fast_forwarding() const override { return film() && film()->fast_forward; }
    double position() const override { return film() ? film()->position.load() : 0.0; }
    double duration() const override { return film() ? film()->duration.load() : 0.0; }

    bool picture_size(int* width, int* height) const override {
        const VideoState* is = film();
        if (!is || is->video_stream_index < 0) return false;
        // The size may change on the way; the picture on screen knows it.
        const bool shown = is->shown_picture >= 0;
        const VideoPicture& pic =
            is->pictures[static_cast<std::size_t>(shown ? is->shown_picture : 0)];
        *width = shown ? pic.width : is->video_info.width;
        *height = shown ? pic.height : is->video_info.height;
        return true;
    }
    int largest_texture() const override { return max_texture_size; }

    void set_inloop_filter(bool on) override {
        VideoState* is = film();
        if (!is || is->video_stream_index < 0) return;
        const MutexLock lock(is->video_decoder_mutex);
        is->video_codec->skip_loop_filter = on ? AVDISCARD_NONE : AVDISCARD_ALL;
    }

    void toggle_pause() override {
        if (film()) stream_pause(film());
    }
    void rewind() override {
        if (film()) stream_rewind(film());
    }
    void fast_forward() override {
        if (film()) stream_ffw(film());
    }
    void seek(std::int64_t microseconds) override {
        VideoState* is = film();
        if (!is) return;
        is->seek_exactly = true;
        stream_seek(is, is->start_time + microseconds, 0);
        video_refresh_timer(is);
    }

    void open(const std::string& path) override {
        if (film()) stream_close(film());
        stream_open(path.c_str(), window_title, nullptr);
    }
    void show_label(const std::string& text) override { set_infolabel(text); }

    bool is_fullscreen() const override { return get_fullscreen(); }
    void set_fullscreen(bool on) override { cover_screen(on); }
    void set_vsync(bool on) override { ::set_vsync(on ? 1 : 0); }

    gl_texture_resource* thumbnail(const std::string& path) override {
        return ThumbnailDatabase::Lookup(path, true).texture;
    }

  private:
    static VideoState* film() { return global_video_state; }
};

}  // namespace

void connect_forms() {
    static EngineControl engine;
    player_control = &engine;
}

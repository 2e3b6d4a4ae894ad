// SPDX-License-Identifier: MIT
#include "player/display.h"

#include "core/settings.h"
#include "gpu/gl_context.h"
#include "gpu/video_display.h"
#include "platform/window.h"
#include "player/clocks.h"
#include "player/picture_queue.h"
#include "player/refresh_plan.h"
#include "player/video_refresh.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <thread>

namespace {

SwapObserver swap_observer = nullptr;

// The open film as the display sees it.
class FilmSource : public PictureSource {
  public:
    explicit FilmSource(VideoState* is) : is_(is) {}
    void fill_picture(const VideoPicture& pic, std::uint8_t* destination,
                      BufferForm form) override {
        ::fill_picture(is_, pic, destination, form);
    }
    double video_clock() override { return get_video_clock(is_); }
    double master_clock() override { return get_master_clock(is_); }

  private:
    VideoState* is_;
};

double seconds(std::int64_t microseconds) {
    return static_cast<double>(microseconds) / 1000000.0;
}

// A picture that was drawn early waits for its time, which is near.
void sleep_until(double due) {
    constexpr double longest = 0.1;
    const double wait = std::min(due - seconds(wall_clock()), longest);
    if (wait > 0.0) std::this_thread::sleep_for(std::chrono::duration<double>(wait));
}

int queued_pictures(VideoState* is) {
    const MutexLock lock(is->picture_queue_mutex);
    return is->picture_queue_size;
}

}  // namespace

void video_display(VideoState* is) {
    FilmSource source(is);
    const DisplayView view{.screen_width = screen->w,
                           .screen_height = screen->h,
                           .slots = is->pictures.data(),
                           .read_index = is->picture_queue_rindex,
                           .queued = queued_pictures(is),
                           .shown_index = is->shown_picture,
                           .paused = is->paused,
                           .rewind = is->rewind,
                           .fast_forward = is->fast_forward,
                           .step = is->pause_refresh,
                           .pixel_buffers = is->pbo_supported,
                           .show_motion_vectors = is->show_motion_vectors,
                           .show_quantization = is->show_quantization,
                           .phase_step = is->clocks.subframe_counter,
                           .phase_fraction = is->clocks.interpolation_phase,
                           .hook = is->postprocessing_callback,
                           .playback_speed_index = is->playback_speed_index,
                           .source = source,
                           .staging = is->staging_texture,
                           .output = is->output_texture,
                           .shown = is->shown_texture,
                           .planes = is->direct_planes};
    const std::int64_t begun = wall_clock();
    display_picture(view);
    hud_display(is);
    finish_drawing();
    RefreshClocks& clocks = is->clocks;
    note_drawing_time(clocks, seconds(wall_clock() - begun));
    if (!is->paused) sleep_until(clocks.displayed_due);
    gui_display();
    if (swap_observer) swap_observer(is, wall_clock());
}

void audio_display(VideoState* is) {
    clear_window(screen->w, screen->h);
    hud_display(is);
    gui_display();
}

void video_nosignal_display() {
    clear_window(screen->w, screen->h);
    hud_display(nullptr);
    gui_display();
}

void hud_display(VideoState* /*is*/) {
    const int fps = static_cast<int>(std::lrint(video_estimate_fps()));
    constexpr int automatic = 2;
    if (master_settings.vsync.toInt() == automatic) {
        const bool wanted = fps >= get_display_refresh_rate() - 1;
        if (wanted != (get_vsync() != 0)) set_vsync(wanted ? 1 : 0);
    }
    note_frame_shown(wall_clock());
}

void gui_display() {
    if (get_vsync()) finish_drawing();
    present_window();
}

void set_swap_observer(SwapObserver observer) {
    swap_observer = observer;
}

// SPDX-License-Identifier: MIT
#include "player/display.h"

#include "core/settings.h"
#include "gpu/display_geometry.h"
#include "gpu/gl_context.h"
#include "gpu/no_signal.h"
#include "gpu/video_display.h"
#include "gui/gui_layer.h"
#include "platform/window.h"
#include "player/clocks.h"
#include "player/hud.h"
#include "player/infolabel.h"
#include "player/picture_queue.h"
#include "player/play_video.h"
#include "player/refresh_plan.h"
#include "player/video_refresh.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <thread>

namespace {

SwapObserver swap_observer = nullptr;
LastingTexts subtitle_texts;
std::vector<OverlayText> drawn_texts;

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

void adapt_vsync(int fps) {
    constexpr int automatic = 2;
    if (master_settings.vsync.toInt() != automatic) return;
    const bool wanted = vsync_is_wanted(fps, display_refresh_rate);
    if (wanted != (get_vsync() != 0)) set_vsync(wanted ? 1 : 0);
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
    if (!display_picture(view) && is->audio_stream_index >= 0) {
        // There will be a picture, which shall not grow out of the waveforms.
        audio_display(is);
        reset_video_scaling_animation();
        return;
    }
    hud_display(is);
    finish_drawing();
    RefreshClocks& clocks = is->clocks;
    note_drawing_time(clocks, seconds(wall_clock() - begun));
    if (!is->paused) sleep_until(clocks.displayed_due);
    gui_display();
    if (swap_observer) swap_observer(is, wall_clock());
}

void video_nosignal_display() {
    clear_window(screen->w, screen->h);
    SDL_Rect r = no_signal_rectangle(screen->w, screen->h);
    video_scaling_animation(r);
    draw_no_signal(r, screen->h, no_signal_time(SDL_GetTicks(), screen->h));
    hud_display(nullptr);
    gui_display();
}

namespace {

std::vector<OverlayText> current_texts(VideoState* is, int fps) {
    fade_infolabel(wall_clock());
    HudInput input{.width = static_cast<float>(screen->w),
                   .height = static_cast<float>(screen->h),
                   .label = infolabel_text,
                   .label_alpha = infolabel_alpha,
                   .status = {},
                   .subtitle = nullptr};
    if (is) {
        input.status = hud_status(is, fps);
        input.subtitle = current_subtitle(is);
    }
    return hud_texts(input);
}

}  // namespace

bool hud_is_current(VideoState* is) {
    return current_texts(is, static_cast<int>(std::lrint(video_estimate_fps()))) == drawn_texts;
}

void hud_display(VideoState* is) {
    const int fps = static_cast<int>(std::lrint(video_estimate_fps()));
    adapt_vsync(fps);
    std::vector<OverlayText> texts = current_texts(is, fps);
    drawn_texts = texts;
    const auto subtitle = std::stable_partition(texts.begin(), texts.end(),
                                                [](const auto& t) { return !t.outlined; });
    for (auto text = texts.begin(); text != subtitle; ++text)
        draw_overlay_text(*text);
    subtitle_texts.draw({subtitle, texts.end()});
    note_frame_shown(wall_clock());
}

void gui_display() {
    draw_gui();
    if (get_vsync()) finish_drawing();
    present_window();
}

void set_swap_observer(SwapObserver observer) {
    swap_observer = observer;
}

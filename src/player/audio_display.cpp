// SPDX-License-Identifier: MIT
#include "core/settings.h"
#include "core/split_path.h"
#include "gpu/display_geometry.h"
#include "gpu/video_display.h"
#include "gpu/waveform_display.h"
#include "gui/graphics.h"
#include "gui/overlay_text.h"
#include "platform/window.h"
#include "player/display.h"

#include <algorithm>

namespace {

// Where the name stands in the picture of the waveforms.
constexpr float name_x = 10.0F;
constexpr float name_y = 440.0F;

void draw_name(const VideoState* is) {
    std::string name;
    _splitpath(is->filename.c_str(), nullptr, nullptr, &name, nullptr);
    draw_overlay_text({name, name_x, name_y});
}

void draw_sound(VideoState* is, const SDL_Rect& r) {
    gl_texture_resource* tex = is->output_texture;
    fade_waveforms(tex);
    draw_waveforms(tex, read_waveforms(is));
    clear_window(screen->w, screen->h);
    push_transform();
    translate_transform(r.x, r.y);
    scale_transform(static_cast<float>(r.w) / waveform_width,
                    static_cast<float>(r.h) / waveform_height);
    show_waveforms(tex, is->rewind || is->fast_forward, r.h, screen->h,
                   static_cast<float>(SDL_GetTicks()) * 0.001F);
    draw_name(is);
    pop_transform();
}

}  // namespace

std::vector<Waveform> read_waveforms(const VideoState* is) {
    const int channels = std::clamp(is->audio_info.channels, 0, waveform_channels);
    std::vector<Waveform> waveforms;
    for (int channel = 0; channel < channels; ++channel) {
        const CircularBuffer<float>* scope = is->audio_scope[channel];
        if (!scope) break;
        Waveform& waveform = waveforms.emplace_back();
        for (int x = 0; x < waveform_width; ++x)
            waveform[static_cast<std::size_t>(x)] =
                scope->Read(x * scope->Capacity() / waveform_width);
    }
    return waveforms;
}

void audio_display(VideoState* is) {
    alloc_waveforms(is->output_texture);
    const int factor = master_settings.spatial_upscaling_factor.toInt() + 1;
    SDL_Rect r =
        waveform_rectangle(master_settings.spatial_zoom.toInt(), factor, screen->w, screen->h);
    video_scaling_animation(r);
    if (is->audio_stream_index >= 0) {
        draw_sound(is, r);
    } else {
        clear_window(screen->w, screen->h);
    }
    hud_display(is);
    gui_display();
}

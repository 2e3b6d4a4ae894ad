// SPDX-License-Identifier: MIT
#include "player/key_commands.h"

#include "core/settings.h"
#include "core/text.h"
#include "gui/forms.h"
#include "platform/window.h"
#include "player/clocks.h"
#include "player/infolabel.h"
#include "player/play_video.h"
#include "player/stream.h"

#include <algorithm>

namespace {

constexpr const char* on_off[] = {"OFF", "ON"};
constexpr const char* vsync_desc[] = {"OFF", "ON", "ADAPTIVE"};
constexpr const char* modes[] = {"SWS_SCALE", "YUV420P"};
constexpr const char* yesno[] = {"NO", "YES"};

bool flip(Value& setting) {
    setting.setValue(1.0F - setting.getValue());
    return setting.toBool();
}

void flip_and_tell(bool& flag, const std::string& what) {
    flag = !flag;
    set_infolabel(what + " " + on_off[flag]);
}

void next_vsync() {
    Value& setting = master_settings.vsync;
    const int next = (setting.toInt() + 1) % 3;
    setting.setValue(static_cast<float>(next));
    set_vsync(setting.toBool() ? 1 : 0);
    set_infolabel(formatted("VSync %s", vsync_desc[next]));
}

void change_volume(float decibels) {
    Value& volume = master_settings.volume;
    volume.setValue(volume.getValue() + decibels);
    set_infolabel(formatted("Volume: %+.02f dB", static_cast<double>(volume.getValue())));
}

void change_speed(VideoState* is, const SDL_keysym& key, int step) {
    const auto held = static_cast<unsigned>(KMOD_RSHIFT | KMOD_RCTRL | KMOD_RALT);
    if (!is || (key.mod & held) != held) return;
    const int last = static_cast<int>(playback_speeds.size()) - 1;
    const int index = std::clamp(is->playback_speed_index + step, 0, last);
    is->playback_speed_index = index;
    const double speed = playback_speeds[static_cast<std::size_t>(index)];
    set_infolabel(formatted("Playback speed: %03d%%", static_cast<int>(speed * 100)));
}

// Commands that need an open film.
void film_command(VideoState* is, SDLKey key) {
    if (!is) {
        set_infolabel("No video loaded.");
        return;
    }
    switch (key) {
        case SDLK_l:
            flip_and_tell(is->loop, "Loop mode");
            break;
        case SDLK_m:
            flip_and_tell(is->show_motion_vectors, "Show motion vectors");
            break;
        case SDLK_q:
            flip_and_tell(is->show_quantization, "Show quantization factors");
            break;
        case SDLK_o:
            set_infolabel(flip(master_settings.show_original) ? "Original" : "Processed");
            break;
        case SDLK_s:
            set_infolabel(formatted("Status %s", on_off[flip(master_settings.status)]));
            break;
        case SDLK_d:
            set_infolabel(formatted("Demo mode %s", on_off[flip(master_settings.demo_mode)]));
            break;
        case SDLK_v:
            next_vsync();
            break;
        case SDLK_i:
            set_infolabel(stream_description(is));
            break;
        default:
            break;
    }
}

// The form shows what a key has changed.
void refresh_settings_form() {
    if (!formVideoSettings.IsNull()) formVideoSettings->invalidate();
}

void toggle_form(FormWidget* form) {
    if (!form) return;
    form->reset_scaling_center();
    form->toggle();
}

void scan(VideoState* is, void (*start)(VideoState*)) {
    if (!is) return;
    start(is);
    set_infolabel(">>");
}

}  // namespace

std::string stream_description(const VideoState* is) {
    // What is told of the sound is there once its index is.
    const bool has_audio = is->audio_stream_index >= 0;
    const StreamInfo& sound = is->audio_info;
    const int bits = has_audio ? static_cast<int>(sound.bit_rate) : 0;
    if (is->video_stream_index < 0) {
        if (!has_audio) return {};
        return formatted("Codec: %s, bitrate: %d bps", sound.codec_name.c_str(), bits);
    }
    const StreamInfo& video = is->video_info;
    std::string result =
        formatted("Video codec: %s [%dx%d, %.1f fps]\nMode: %s, ST.ext: %s",
                  video.codec_name.c_str(), video.width, video.height, video.frame_rate,
                  modes[is->yuv_direct], yesno[is->pbo_supported]);
    if (has_audio) {
        result += formatted("\nAudio codec: %s, bitrate: %d bps, channels: %d",
                            sound.codec_name.c_str(), bits, sound.channels);
    }
    return result;
}

void key_down(VideoState* is, const SDL_keysym& key) {
    switch (key.sym) {
        case SDLK_l:
        case SDLK_m:
        case SDLK_q:
        case SDLK_o:
        case SDLK_s:
        case SDLK_d:
        case SDLK_v:
        case SDLK_i:
            film_command(is, key.sym);
            refresh_settings_form();
            break;
        case SDLK_SPACE:
            if (is) stream_pause(is);
            break;
        case SDLK_UP:
            change_volume(1.0F);
            break;
        case SDLK_DOWN:
            change_volume(-1.0F);
            break;
        case SDLK_RIGHT:
            scan(is, stream_ffw);
            break;
        case SDLK_LEFT:
            scan(is, stream_rewind);
            break;
        case SDLK_KP_MINUS:
            change_speed(is, key, -1);
            break;
        case SDLK_KP_PLUS:
            change_speed(is, key, 1);
            break;
        case SDLK_F1:
            if (!formMediaBrowser.IsNull()) formMediaBrowser->toggle();
            break;
        case SDLK_F2:
            toggle_form(formVideoSettings);
            break;
        case SDLK_F3:
            toggle_form(formAudioSettings);
            break;
        case SDLK_F4:
            toggle_form(formVideoAdvancedSettings);
            break;
        case SDLK_F12:
            cover_screen(!get_fullscreen());
            break;
        default:
            break;
    }
}

void key_up(VideoState* is, const SDL_keysym& key) {
    if (is && (key.sym == SDLK_RIGHT || key.sym == SDLK_LEFT)) stream_pause(is);
}

// SPDX-License-Identifier: MIT
#include "gpu/video_display.h"

#include "core/settings.h"
#include "gpu/display_effects.h"
#include "gpu/display_geometry.h"
#include "gpu/enhancement_chain.h"
#include "gpu/gl_bindings.h"
#include "gpu/video_overlays.h"
#include "platform/threads.h"

namespace {

constexpr float background = 0.02F;

VideoPicture& slot(const DisplayView& view, int index) {
    return view.slots[index % picture_slots];
}

// Whether a picture that the GPU converts goes to the window without a texture between.
bool may_go_directly(const DisplayView& view) {
    return !view.hook && !view.rewind && !view.fast_forward && pictures_stay_untouched();
}

// Where a picture comes to lie.
SDL_Rect place_of(const DisplayView& view, const VideoPicture& pic,
                  const EnhancementFactors& factors) {
    return destination_rectangle(master_settings.spatial_zoom.toInt(), pic.height,
                                 display_aspect(pic.width, pic.height, pic.sample_aspect),
                                 factors.spatial, view.screen_width, view.screen_height);
}

// What the window would skip between two pixels is halved instead while it is copied: less to
// upload and to draw, and fine patterns stay patterns.
bool half_is_enough(const DisplayView& view, const VideoPicture& pic) {
    const SDL_Rect r = place_of(view, pic, enhancement_factors(pic.width, pic.height));
    return 2 * r.w <= pic.width && 2 * r.h <= pic.height;
}

BufferForm wanted_form(const DisplayView& view, const VideoPicture& pic) {
    const bool on_gpu = pic.yuv_direct && master_settings.upscaling_algorithm.toInt() == 0 &&
                        master_settings.offload_decoding.toBool();
    if (!on_gpu) return BufferForm::rgb;
    if (!may_go_directly(view)) return BufferForm::packed;
    return half_is_enough(view, pic) ? BufferForm::halved : BufferForm::interleaved;
}

// Brings every queued picture into its buffer, in the form that its conversion needs now. Slots
// that are not queued are left alone: the video thread may be writing them.
void fill_pixel_buffers(const DisplayView& view) {
    if (!view.pixel_buffers) return;
    for (int i = 0; i < view.queued; ++i) {
        VideoPicture& pic = slot(view, view.read_index + i);
        if (!pic.ready || !pic.pbo || pic.uploaded) continue;
        const BufferForm form = wanted_form(view, pic);
        if (!pic.buffer_filled || pic.buffer_form != form)
            fill_pixel_buffer(pic, view.source, form);
    }
}

bool is_direct(BufferForm form) {
    return form == BufferForm::interleaved || form == BufferForm::halved;
}

// The window has grown since the picture that stays was halved.
void restore_halved(const DisplayView& view, VideoPicture& pic) {
    constexpr BufferForm whole = BufferForm::interleaved;
    const bool shown_halved = !view.shown && view.planes.halved;
    if (!shown_halved || half_is_enough(view, pic) || !pic.frame || !pic.pbo) return;
    // While it is queued it was filled like the others.
    if (!pic.buffer_filled || pic.buffer_form != whole) fill_pixel_buffer(pic, view.source, whole);
    upload_planes(pic, view.planes);
}

bool refreshes(const DisplayView& view) {
    return !view.paused || view.step || view.rewind || view.fast_forward;
}

void begin_picture(const VideoPicture& pic, const SDL_Rect& r) {
    glPushMatrix();
    glTranslatef(r.x, r.y, 0);
    glScalef(static_cast<float>(r.w) / static_cast<float>(pic.width),
             static_cast<float>(r.h) / static_cast<float>(pic.height), 1);
}

void draw_textured_quad(const VideoPicture& pic, const gl_texture_resource& tex) {
    const bool texels = tex.target() != GL_TEXTURE_2D;
    const float s = texels ? static_cast<float>(tex.width()) : 1.0F;
    const float t = texels ? static_cast<float>(tex.height()) : 1.0F;
    glColor4f(1, 1, 1, 1);
    glBegin(GL_QUADS);
    glTexCoord2f(0, 0);
    glVertex2i(0, 0);
    glTexCoord2f(s, 0);
    glVertex2i(pic.width, 0);
    glTexCoord2f(s, t);
    glVertex2i(pic.width, pic.height);
    glTexCoord2f(0, t);
    glVertex2i(0, pic.height);
    glEnd();
}

// Whether the picture has more texels than its place on screen has pixels.
bool is_reduced(const VideoPicture& pic, const EnhancementFactors& factors, const SDL_Rect& r) {
    return r.w * r.h < pic.width * pic.height * factors.spatial * factors.spatial;
}

void hand_over(object_ref<gl_texture_resource>& from, object_ref<gl_texture_resource>& to) {
    if (!from || to) return;
    to = from;
    from = nullptr;
}

// Only a picture and the one before it need textures. Those of the other slots serve the next ones.
void take_textures(const DisplayView& view, VideoPicture& pic) {
    for (int i = 1; i + 1 < picture_slots; ++i) {
        VideoPicture& other = slot(view, view.read_index + i);
        hand_over(other.rgb, pic.rgb);
        hand_over(other.enhanced, pic.enhanced);
        hand_over(other.motion, pic.motion);
    }
}

void prepare(const DisplayView& view, VideoPicture& pic, const EnhancementFactors& factors,
             DirectInterpolation* direct) {
    if (pic.buffer_filled && is_direct(pic.buffer_form)) {
        upload_planes(pic, view.planes);
        view.shown = nullptr;
        if (view.step) view.phase_fraction = 1.0F;
        view.step = false;
    } else {
        VideoPicture& prev = slot(view, view.read_index + picture_slots - 1);
        if (!pic.uploaded) take_textures(view, pic);
        prepare_picture(view, pic, prev, factors, direct);
    }
    pic.seen = true;
    view.shown_index = static_cast<int>(&pic - view.slots);
}

void draw_shown(const DisplayView& view, const VideoPicture& pic, const SDL_Rect& r) {
    gl_texture_resource* tex = view.shown;
    if (!tex) {
        if (!view.planes.empty()) draw_planes(view.planes, pic.width, pic.height);
        return;
    }
    glEnable(tex->target());
    glBindTexture(tex->target(), tex->name());
    glTexParameteri(tex->target(), GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(tex->target(), GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    if (view.rewind || view.fast_forward) {
        begin_seeking_effect(r.h, view.screen_height, static_cast<float>(SDL_GetTicks()) * 0.001F);
    }
    draw_textured_quad(pic, *tex);
    glUseProgram(0);
    glBindTexture(tex->target(), 0);
    glDisable(tex->target());
}

// A paused picture has to be shown without interpolation once. Where there is none the picture on
// screen is that already, and the one at the read index, not seen yet, stays for later.
bool shows_all_of_it(const DisplayView& view) {
    return view.step && view.paused && !view.rewind && !view.fast_forward &&
           view.shown_index >= 0 && master_settings.temporal_upscaling_factor.toInt() == 0 &&
           (view.queued == 0 || !slot(view, view.read_index).seen);
}

// The picture to draw: the one at the read index once it is there, else the last one.
VideoPicture* current_picture(const DisplayView& view) {
    if (view.queued > 0 && refreshes(view) && slot(view, view.read_index).ready) {
        return &slot(view, view.read_index);
    }
    return view.shown_index >= 0 ? &slot(view, view.shown_index) : nullptr;
}

}  // namespace

void clear_window(int width, int height) {
    bind_window(width, height);
    glDisable(GL_TEXTURE_2D);
    glDisable(GL_BLEND);
    glClearColor(background, background, background, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT);
}

bool display_picture(const DisplayView& view) {
    assert_thread(ThreadRole::main);
    if (shows_all_of_it(view)) {
        view.step = false;
        view.phase_fraction = 1.0F;
    }
    fill_pixel_buffers(view);
    VideoPicture* pic = current_picture(view);
    if (!pic || pic->width <= 0 || pic->height <= 0) {
        clear_window(view.screen_width, view.screen_height);
        return false;
    }
    const EnhancementFactors factors = enhancement_factors(pic->width, pic->height);
    SDL_Rect r = place_of(view, *pic, factors);
    video_scaling_animation(r);
    DirectInterpolation between;
    if (view.queued > 0 && pic == &slot(view, view.read_index) && refreshes(view)) {
        prepare(view, *pic, factors, is_reduced(*pic, factors, r) ? &between : nullptr);
    } else if (view.queued == 0 && refreshes(view) && view.shown && pic->uploaded && pic->rgb) {
        // The last one stays, whole, not as it was on the way from the one before.
        VideoPicture nothing;
        nothing.number = pic->number;
        prepare_picture(view, *pic, nothing, factors);
    } else {
        restore_halved(view, *pic);
    }
    clear_window(view.screen_width, view.screen_height);
    begin_picture(*pic, r);
    if (between.method != method_off) {
        draw_interpolated(between, pic->width, pic->height);
    } else {
        draw_shown(view, *pic, r);
    }
    if (view.show_motion_vectors) draw_motion_vectors(*pic);
    if (view.show_quantization) draw_quantization(*pic);
    glPopMatrix();
    return true;
}

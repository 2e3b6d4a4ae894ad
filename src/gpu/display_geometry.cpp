// SPDX-License-Identifier: MIT
#include "gpu/display_geometry.h"

#include "platform/window.h"

#include <algorithm>
#include <cmath>

namespace {

ZoomAnimation window_zoom;

constexpr float animations_per_second = 8.0F;

Uint16 side(double length) {
    return static_cast<Uint16>(std::clamp(length, 0.0, 65535.0));
}

Sint16 centred(int area, int length) {
    return static_cast<Sint16>(std::max((area - length) / 2, -32768));
}

// The nearest whole number with the value 2 cleared.
int masked(double length) {
    return static_cast<int>(std::clamp(std::rint(length), 0.0, 65535.0)) & ~2;
}

bool same(const SDL_Rect& a, const SDL_Rect& b) {
    return a.x == b.x && a.y == b.y && a.w == b.w && a.h == b.h;
}

long area(const SDL_Rect& r) {
    return static_cast<long>(r.w) * r.h;
}

}  // namespace

double display_aspect(int width, int height, double sample_aspect) {
    const double square = height > 0 ? static_cast<double>(width) / height : 1.0;
    const double aspect = sample_aspect * square;
    return aspect > 0.0 && std::isfinite(aspect) ? aspect : square;
}

SDL_Rect fit_rectangle(double aspect, int area_width, int area_height) {
    SDL_Rect r{0, 0, side(masked(area_height * aspect)), side(area_height)};
    if (r.w > area_width) {
        r.w = side(area_width);
        r.h = side(masked(area_width / aspect));
    }
    return r;
}

SDL_Rect destination_rectangle(int zoom, int height, double aspect, int factor, int screen_width,
                               int screen_height) {
    SDL_Rect r{0, 0, 0, 0};
    if (zoom <= 0) {
        r = fit_rectangle(aspect, screen_width, screen_height);
    } else if (zoom == 1) {
        const double k =
            std::max(static_cast<double>(screen_height) / height, screen_width / (height * aspect));
        r.h = side(std::rint(height * k));
        r.w = side(std::rint(height * aspect * k));
    } else {
        const int times = (zoom == 2 ? 1 : zoom == 3 ? 2 : 4) * factor;
        // The quotient of two whole numbers, times one of them, may fall just short of the other.
        constexpr double rounding = 1e-6;
        r.h = side(static_cast<double>(height) * times);
        r.w = side(height * aspect * times + rounding);
    }
    r.x = centred(screen_width, r.w);
    r.y = centred(screen_height, r.h);
    return r;
}

void animate_zoom(ZoomAnimation& zoom, SDL_Rect& r, int screen_width, int screen_height,
                  Uint32 now_ms) {
    SDL_Rect& old = zoom.old_rect;
    if (same(r, old)) return;
    if (old.w == 0 || old.h == 0) {
        old = r;
        return;
    }
    if (!zoom.running) {
        zoom.running = true;
        zoom.start_ms = now_ms;
        old.x = centred(screen_width, old.w);
        old.y = centred(screen_height, old.h);
        r = old;
        return;
    }
    float t = static_cast<float>(now_ms - zoom.start_ms) * animations_per_second / 1000.0F;
    const SDL_Rect from = old;
    if (t > 1.0F) {
        t = 1.0F;
        zoom.running = false;
        old = r;
    }
    t = area(from) < area(r) ? std::pow(t, 0.25F) : std::pow(t, 4.0F);
    const auto between = [t](int to, int start) {
        return static_cast<float>(to) * t + (1.0F - t) * static_cast<float>(start);
    };
    r = {static_cast<Sint16>(between(r.x, from.x)), static_cast<Sint16>(between(r.y, from.y)),
         static_cast<Uint16>(between(r.w, from.w)), static_cast<Uint16>(between(r.h, from.h))};
}

void video_scaling_animation(SDL_Rect& r) {
    if (!screen) return;
    animate_zoom(window_zoom, r, screen->w, screen->h, SDL_GetTicks());
}

void reset_video_scaling_animation() {
    window_zoom = {};
}

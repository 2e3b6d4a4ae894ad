// SPDX-License-Identifier: MIT
#include "player/refresh_plan.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double shortest_wait = 0.01;  // seconds
constexpr int after_release_ms = 10;
constexpr double longest_picture = 1.0;
constexpr double lost_track = 10.0;
constexpr double too_far_behind = 1.0;

// Counts a handled sub-frame; true when it was the picture's last.
bool last_subframe(RefreshClocks& clocks, int n) {
    if (++clocks.subframe_counter < n) return false;
    clocks.subframe_counter = 0;
    return true;
}

// Dropping a picture cannot make up for one that came late.
void restart_if_late(RefreshClocks& clocks, const RefreshInput& in, double delay) {
    const double ahead = in.free_running ? 0.0 : delay / in.n;
    if (clocks.frame_timer + ahead > in.now && !in.jumped) return;
    clocks.frame_timer = in.free_running ? in.now + delay : in.now;
}

}  // namespace

double picture_delay(RefreshClocks& clocks, const RefreshInput& in) {
    if (!in.free_running && clocks.subframe_counter != 0) return clocks.frame_last_delay;
    double delay = in.pts - clocks.frame_last_pts;
    if (!(delay > 0.0 && delay < longest_picture)) delay = clocks.frame_last_delay;
    clocks.frame_last_delay = delay;
    clocks.frame_last_pts = in.pts;
    if (in.follows && std::abs(in.difference) < lost_track) {
        const double threshold = std::max(delay, 0.01);
        if (in.difference <= -threshold) return 0.0;
        if (in.difference >= threshold) return delay * 2.0;
    }
    return delay;
}

double drawing_lead(const RefreshClocks& clocks, double interval) {
    constexpr double reserve = 0.0007;
    return std::min(clocks.drawing_time + reserve, interval * 0.5);
}

void note_drawing_time(RefreshClocks& clocks, double duration) {
    clocks.drawing_time += 0.1 * (duration - clocks.drawing_time);
}

RefreshPlan plan_refresh(RefreshClocks& clocks, const RefreshInput& in) {
    const double delay = picture_delay(clocks, in) * (1.0 / in.speed);
    const double subframe = delay / in.n;
    // Or ahead, when somebody has set the system's clock back.
    const bool too_late = clocks.frame_timer <= in.now - too_far_behind;
    const bool too_early = clocks.frame_timer >= in.now + too_far_behind + delay;
    if (too_late || too_early) clocks.frame_timer = in.now;
    if (in.starved) restart_if_late(clocks, in, delay);

    if (in.free_running) {
        const double ahead = subframe > 0.0 ? (clocks.frame_timer - in.now) / subframe : 0.0;
        clocks.interpolation_phase =
            static_cast<float>(std::clamp(in.n - ahead, 0.0, static_cast<double>(in.n)));
        clocks.subframe_counter = 0;
        clocks.displayed_due = 0.0;
    } else {
        clocks.interpolation_phase = 0.0F;
        clocks.displayed_due = clocks.frame_timer;
        clocks.frame_timer += subframe;
    }

    const double remaining = clocks.frame_timer - in.now;
    if (remaining > 0.0) {
        const double lead = in.free_running ? 0.0 : drawing_lead(clocks, subframe);
        const int ms = static_cast<int>(std::max(remaining - lead, shortest_wait) * 1000.0 + 0.5);
        return {true, !in.free_running && last_subframe(clocks, in.n), ms};
    }
    if (in.free_running) {
        clocks.frame_timer += delay;
        return {false, true, after_release_ms};
    }
    if (last_subframe(clocks, in.n)) return {false, true, after_release_ms};
    return {false, false, -1};
}

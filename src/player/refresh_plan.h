// SPDX-License-Identifier: MIT
#pragma once

#include "player/video_state.h"

/// What decides about a refresh besides the clocks. Times in seconds.
struct RefreshInput {
    double pts;         ///< of the picture at the read index
    double now;         ///< wall time
    double speed;       ///< playback speed, 1 for normal
    int n;              ///< sub-frames per picture
    bool free_running;  ///< refreshes follow each other without a timer
    bool follows;       ///< pictures follow another clock than their own time stamps
    double difference;  ///< pts - master clock, where they follow one
    bool starved;       ///< the first picture, or the first after the queue had run empty
    bool jumped;        ///< the first picture of the film or after a seek: it does not wait for the
                        ///< time of the one before to be over
};

/// What a refresh does.
struct RefreshPlan {
    bool display;  ///< draw the picture
    bool release;  ///< the slot at the read index is done with, after the drawing
    int delay_ms;  ///< when the next refresh is wanted; -1: decide again at once
};

/// How long a picture stays, at speed 1: the distance from the previous picture, or the previous
/// duration where that makes no sense; adjusted to the clock that is followed.
double picture_delay(RefreshClocks& clocks, const RefreshInput& in);

/// How long before a picture is due its drawing starts, so that it can be on screen in time. Never
/// more than half of `interval`, the time between two pictures.
double drawing_lead(const RefreshClocks& clocks, double interval);

/// Takes in that drawing a picture took `duration`.
void note_drawing_time(RefreshClocks& clocks, double duration);

/// Decides about the picture at the read index and moves the clocks on.
///
/// On time, the sub-frame is displayed. Late, it is skipped; the picture goes with its last
/// sub-frame. A second or more behind, or late because there was no picture before, the time line
/// starts again at now: a slow machine shows fewer pictures, but shows them.
RefreshPlan plan_refresh(RefreshClocks& clocks, const RefreshInput& in);

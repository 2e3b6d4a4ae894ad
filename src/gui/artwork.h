// SPDX-License-Identifier: MIT
#pragma once

// The icons of the menu's buttons, white, in a square of 34 GUI units from the origin. `t` is the
// phase of their animation, which starts at 0 and grows. [main]

/// A window whose lines scroll down.
void artwork_draw_menuicon(float t);

/// A gear wheel turned by `t` degrees.
void artwork_draw_optionicon(float t);

/// A loudspeaker with waves that move outwards.
void artwork_draw_audioicon(float t);

/// Four arrows around a square: outwards for `mode` 0, inwards for any other. Leaves the matrix
/// displaced by a rotation about (17, 17).
void artwork_draw_fullscreenicon(float t, int mode);

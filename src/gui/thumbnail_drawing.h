// SPDX-License-Identifier: MIT
#pragma once

class gl_texture_resource;

/// How wide a picture is that is drawn `height` units high, in whole units; 0 where it has no
/// height of its own.
int thumbnail_width(const gl_texture_resource& texture, int height);

/// Draws a picture with its top left corner at (x, y), as opaque as the form that is drawn. Leaves
/// no texture bound. [main]
void draw_thumbnail(const gl_texture_resource& texture, float x, float y, int width, int height);

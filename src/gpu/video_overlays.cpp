// SPDX-License-Identifier: MIT
#include "gpu/video_overlays.h"

#include <algorithm>
#include <cmath>
#include <numbers>

float arrow_stroke_length(MotionVector v) {
    const auto x = static_cast<float>(v.x);
    const auto y = static_cast<float>(v.y);
    return std::min(0.4F * std::sqrt(x * x + y * y), 2.0F);
}

void draw_motion_vectors(const VideoPicture& pic) {
    if (pic.motion_vectors.empty()) return;
    constexpr float sixth = std::numbers::pi_v<float> / 6.0F;
    glColor3f(1.0F, 0.0F, 0.0F);
    glBegin(GL_LINES);
    // The last row and column only help to interpolate.
    for (int r = 0; r + 1 < pic.motion_vectors.rows(); ++r) {
        for (int c = 0; c + 1 < pic.motion_vectors.columns(); ++c) {
            const MotionVector v = pic.motion_vectors[r][c];
            const float x = (static_cast<float>(c) + 0.5F) * static_cast<float>(pic.block_width);
            const float y = (static_cast<float>(r) + 0.5F) * static_cast<float>(pic.block_height);
            const auto dx = static_cast<float>(v.x);
            const auto dy = static_cast<float>(v.y);
            const float length = arrow_stroke_length(v);
            const float angle = std::atan2(dy, dx);
            // The strokes start at the middle of the block, like the line itself.
            glVertex2f(x, y);
            glVertex2f(x + dx, y + dy);
            for (const float turned : {angle - sixth, angle + sixth}) {
                glVertex2f(x, y);
                glVertex2f(x + length * std::cos(turned), y + length * std::sin(turned));
            }
        }
    }
    glEnd();
}

void draw_quantization(const VideoPicture& pic) {
    if (pic.quantization_table.empty()) return;
    glEnable(GL_BLEND);
    glBegin(GL_QUADS);
    for (int r = 0; r < pic.quantization_table.rows(); ++r) {
        for (int c = 0; c < pic.quantization_table.columns(); ++c) {
            const float v =
                std::min(static_cast<float>(pic.quantization_table[r][c]) / 50.0F, 1.0F);
            const int x = c * pic.block_width;
            const int y = r * pic.block_height;
            glColor4f(v * v * v * v, 0.0F, 0.0F, 0.6F);
            glVertex2i(x, y);
            glVertex2i(x + pic.block_width, y);
            glVertex2i(x + pic.block_width, y + pic.block_height);
            glVertex2i(x, y + pic.block_height);
        }
    }
    glEnd();
    glDisable(GL_BLEND);
}

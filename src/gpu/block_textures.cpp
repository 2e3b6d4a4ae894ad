// SPDX-License-Identifier: MIT
#include "gpu/block_textures.h"

#include "gpu/gl_bindings.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace {

// Fills the texture, three values a texel as `value(row, column, channel)` gives them. The memory
// is kept from picture to picture.
template <class T, class Value>
void upload(gl_texture_resource* out, GLenum type, const Value& value) {
    static std::vector<T> texels;  // [main]
    texels.clear();
    for (int r = 0; r < out->height(); ++r) {
        for (int c = 0; c < out->width(); ++c) {
            for (int channel = 0; channel < 3; ++channel)
                texels.push_back(value(r, c, channel));
        }
    }
    glBindTexture(out->target(), out->name());
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexSubImage2D(out->target(), 0, 0, 0, out->width(), out->height(), GL_RGB, type,
                    texels.data());
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glBindTexture(out->target(), 0);
}

template <class T>
bool covers(const Grid<T>& grid, const gl_texture_resource* out) {
    return grid.rows() >= out->height() && grid.columns() >= out->width();
}

}  // namespace

void upload_block_vectors(const VideoPicture& pic, gl_texture_resource* out) {
    const bool known = covers(pic.motion_vectors, out);
    upload<float>(out, GL_FLOAT, [&](int r, int c, int channel) {
        if (!known || channel > 1) return 0.0F;
        const MotionVector& mv = pic.motion_vectors[r][c];
        return static_cast<float>(channel == 0 ? mv.x : mv.y);
    });
}

void upload_block_quantisers(const VideoPicture& pic, gl_texture_resource* out) {
    const bool known = covers(pic.quantization_table, out);
    upload<std::int8_t>(out, GL_BYTE, [&](int r, int c, int /*channel*/) {
        return static_cast<std::int8_t>(known ? pic.quantization_table[r][c] : 1);
    });
}

bool serves_as_reference(const VideoPicture* pic) {
    return pic && pic->rgb && pic->is_enhanced;
}

int block_rows(const VideoPicture& pic) {
    return std::max(pic.grid_height, 1);
}

int block_columns(const VideoPicture& pic) {
    return std::max(pic.grid_width, 1);
}

paravec2<float> block_size(const VideoPicture& pic) {
    // Without a grid the one texel stands for the whole picture.
    return {static_cast<float>(std::max(pic.block_width, 1)),
            static_cast<float>(std::max(pic.block_height, 1))};
}

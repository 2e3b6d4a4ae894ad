// SPDX-License-Identifier: MIT
#pragma once

#include "gpu/gl_shader.h"
#include "gpu/video_picture.h"

/// Bring what the codec tells about the blocks of a picture into a texture of grid rows x grid
/// columns (at least 1 x 1), default float format. [main]

/// Motion vectors in source texels in r and g; (0, 0) where the picture has none.
void upload_block_vectors(const VideoPicture& pic, gl_texture_resource* out);

/// Quantisers, 127 becoming 1.0, in r, g and b; where the picture has none, 1 everywhere, which is
/// what streams that tell none have.
void upload_block_quantisers(const VideoPicture& pic, gl_texture_resource* out);

/// Whether the estimate of the next picture can build on this one, which may be null: it is
/// enhanced.
bool serves_as_reference(const VideoPicture* pic);

/// Sides of those textures.
int block_rows(const VideoPicture& pic);
int block_columns(const VideoPicture& pic);

/// Size of a block in source texels.
paravec2<float> block_size(const VideoPicture& pic);

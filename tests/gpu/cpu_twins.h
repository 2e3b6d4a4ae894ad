// SPDX-License-Identifier: MIT
#pragma once

#include "gpu/video_picture.h"

#include "support/gl_fixture.h"

/// What every program of the enhancement passes computes, written plainly for one processor.
///
/// Images stand for textures, f is the factor, displacements (dx, dy) are in enhanced texels.
/// Textures of 8 bits round their results: pass them through `as_8_bits`.
namespace twins {

/// The bicubic of Catmull and Rom at (s, t), texel centres at halves.
Rgba catmull_rom(const Image& image, double s, double t);

/// spatial_sr
Image sr_Ia(const Image& rgb, int f);
Image sr_Ib(const Image& rgb, const Image& ref_enhanced, const Image& ref_rgb,
            const VideoPicture& cur, int f);
Image sr_II(const Image& estimate);
Image sr_III(const Image& rgb, const Image& estimate, int dx, int dy, int f);
Image sr_IVa(const Image& differences);
Image sr_Va(const Image& averages);
Image sr_VI(const Image& estimate, const Image& result, const Image& errors, int dx, int dy);
Image sr_VII(const Image& result);

/// spatial_denoising
Image denoise_Ib(const Image& rgb, const Image& ref_enhanced, const VideoPicture& cur, int f,
                 double threshold);
Image denoise_II(const Image& source);
Image denoise_III(const Image& rgb, const Image& estimate, int dx, int dy, int f);
Image denoise_IV(const Image& distances, int f);
Image denoise_V(const Image& row_sums, const VideoPicture& cur, double level, int dx, int dy,
                int f);
Image denoise_VI(const Image& source, const Image& sum, const Image& weights, int dx, int dy);
Image denoise_VII(const Image& sum);
Image hor_filter(const Image& in);
Image ver_filter(const Image& rows, const Image& in, double level);

/// temporal_upscaling, between `prev` and `cur` at `phase` of T
Image blend(const Image& prev, const Image& cur, double phase, int T);
Image motioncompensated(const Image& prev, const Image& cur, const VideoPicture& pic, double phase,
                        int T, int f);
Image overlapping_4nb(const Image& prev, const Image& cur, const VideoPicture& pic, double phase,
                      int T, int f);
Image overlapping_8nb(const Image& prev, const Image& cur, const VideoPicture& pic, double phase,
                      int T, int f);

}  // namespace twins

// SPDX-License-Identifier: MIT
// What the order of construction and the counting of references rely on.

#include "audio/circular_buffer.h"
#include "audio/eq3band.h"
#include "audio/noise_reduction.h"
#include "audio/vol_pan_control.h"
#include "core/settings.h"
#include "gpu/gl_shader.h"
#include "gpu/gl_texture.h"
#include "gui/screen.h"

#include <type_traits>

// Nothing happens to them at exit, when threads may still use them.
static_assert(std::is_trivially_destructible_v<VolPanControl>);
static_assert(std::is_trivially_destructible_v<Eq3Band>);
static_assert(std::is_trivially_destructible_v<NoiseReduction>);
static_assert(std::is_trivially_destructible_v<rectf>);

static_assert(std::is_base_of_v<object, Value>);
static_assert(std::is_base_of_v<object, gl_texture_resource>);
static_assert(std::is_base_of_v<object, gl_shader_resource>);
static_assert(std::is_base_of_v<object, CircularBuffer<float>>);

// SPDX-License-Identifier: MIT
#include "core/settings.h"

#include <atomic>
#include <cstdint>
#include <utility>

Value::Value(std::string name, float minimum, float maximum, float initial)
    : Value(std::move(name), minimum, maximum, initial, std::string()) {}

Value::Value(std::string name, float minimum, float maximum, float initial, std::string unit)
    : name_(std::move(name)),
      unit_(std::move(unit)),
      minimum_(minimum),
      maximum_(maximum),
      default_(initial),
      value_(initial) {}

Value::Value(const Value& other) = default;
Value& Value::operator=(const Value& other) = default;

Value& Value::setValue(float x) {
    float clamped = x > minimum_ ? x : minimum_;
    clamped = clamped < maximum_ ? clamped : maximum_;
    const auto steps = static_cast<std::int64_t>((clamped - minimum_) / step_ + 0.5F);
    std::atomic_ref<float>(value_).store(minimum_ + step_ * static_cast<float>(steps),
                                         std::memory_order_relaxed);
    return *this;
}

float Value::getValue() const {
    // std::atomic_ref takes no const object before C++26; a load changes nothing.
    return std::atomic_ref<float>(const_cast<float&>(value_)).load(std::memory_order_relaxed);
}

float Value::getNormalizedValue(float v) const {
    return maximum_ == minimum_ ? 0.0F : (v - minimum_) / (maximum_ - minimum_);
}

float Value::fromNormalizedValue(float t) const {
    return minimum_ + t * (maximum_ - minimum_);
}

bool Value::toBool() const {
    return getValue() > 0.5F;
}

int Value::toInt() const {
    return static_cast<int>(getValue() + 0.5F);
}

Settings::Settings()
    : brightness("brightness", -0.5F, 0.5F, 0.0F),
      contrast("contrast", -2.0F, 2.0F, 0.0F),
      spatial_upscaling_factor("spatial upscaling factor", 0.0F, 3.0F, 0.0F),
      upscaling_algorithm("upscaling algorithm", 0.0F, 1.0F, 0.0F),
      temporal_upscaling_factor("temporal upscaling factor", 0.0F, 4.0F, 4.0F),
      sharpening_level("sharpening level", 0.0F, 1.0F, 0.0F),
      denoising_level("denoising level", 0.0F, 60.0F, 20.0F),
      spatial_zoom("spatial zoom", 0.0F, 4.0F, 0.0F),
      vsync("vsync", 0.0F, 2.0F, 2.0F),
      status("status", 0.0F, 1.0F, 0.0F),
      demo_mode("demo mode", 0.0F, 1.0F, 0.0F),
      show_original("show original", 0.0F, 1.0F, 0.0F),
      motion_interpolation_method("motion interpolation method", 0.0F, 2.0F, 1.0F),
      offload_decoding("offload decoding tasks to GPU", 0.0F, 1.0F, 1.0F),
      inloop_deblocking("h264/mpeg4 inloop deblocking filter", 0.0F, 1.0F, 1.0F),
      recursive_filtering_threshold("recursive filtering threshold", 0.0F, 40.0F, 1.0F),
      volume("volume", -40.0F, 10.0F, 0.0F, "dB"),
      balance("balance", -1.0F, 1.0F, 0.0F),
      eq_low("EQlow", -40.0F, 10.0F, 0.0F, "dB"),
      eq_mid("EQmid", -40.0F, 10.0F, 0.0F, "dB"),
      eq_high("EQhigh", -40.0F, 10.0F, 0.0F, "dB"),
      stereo_enhancer("stereo enhancer", 0.0F, 1.0F, 0.5F),
      audio_dnr_level("audio DNR level", 0.0F, 1024.0F, 0.0F),
      audio_latency("audio latency", -0.5F, 0.5F, 0.0F, "s") {
    // Not quite the order of the members, and two of them are left out.
    for (Value* value : {&brightness,
                         &contrast,
                         &spatial_upscaling_factor,
                         &upscaling_algorithm,
                         &temporal_upscaling_factor,
                         &denoising_level,
                         &sharpening_level,
                         &spatial_zoom,
                         &vsync,
                         &status,
                         &demo_mode,
                         &motion_interpolation_method,
                         &offload_decoding,
                         &inloop_deblocking,
                         &volume,
                         &balance,
                         &eq_low,
                         &eq_mid,
                         &eq_high,
                         &stereo_enhancer,
                         &audio_dnr_level,
                         &audio_latency}) {
        add(*value);
    }
}

void Settings::add(Value& v) {
    list_.push_back(v);
    v.addref();
}

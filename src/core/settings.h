// SPDX-License-Identifier: MIT
#pragma once

#include "core/object.h"

#include <string>
#include <vector>

/// A named number with bounds, the unit of everything the user can adjust.
///
/// The number may be read by any thread and is written by the main thread (and, for the spatial
/// factor, by the thread that opens a film). Reads and writes are relaxed: a reader sees the value
/// before or after a change, never a mixture. Everything else is fixed after construction.
class Value : public object {
  public:
    /// `initial` is stored as given, neither clamped nor rounded.
    Value(std::string name, float minimum, float maximum, float initial);
    Value(std::string name, float minimum, float maximum, float initial, std::string unit);
    Value(const Value& other);
    Value& operator=(const Value& other);

    /// Clamps `x` to the bounds and rounds it to the grid of steps that starts at the minimum.
    /// Not-a-number counts as the minimum. Returns this value, for chaining.
    Value& setValue(float x);
    float getValue() const;

    /// Where `v` (not the stored value) lies between minimum (0) and maximum (1); 0 where the two
    /// are equal.
    float getNormalizedValue(float v) const;

    /// The number at `t` between minimum (0) and maximum (1). Stores nothing.
    float fromNormalizedValue(float t) const;

    /// Above 0.5.
    bool toBool() const;

    /// The nearest integer for values of 0 and above: value + 0.5, cut towards zero.
    int toInt() const;

    const std::string& name() const { return name_; }
    const std::string& unit() const { return unit_; }
    float minimum() const { return minimum_; }
    float maximum() const { return maximum_; }
    float default_value() const { return default_; }
    float step() const { return step_; }

    /// Moves the upper bound; the stored value stays. Main thread.
    void set_maximum(float maximum) { maximum_ = maximum; }

  private:
    std::string name_;
    std::string unit_;
    float minimum_;
    float maximum_;
    float default_;
    float step_ = 0.0001F;
    float value_;
};

/// The table of all settings. They live in memory only and start from their defaults.
class Settings {
  public:
    Settings();
    Settings(const Settings&) = delete;
    Settings& operator=(const Settings&) = delete;

    /// Appends a snapshot of `v` to the list and gives `v` itself one more reference, so that no
    /// `object_ref` can ever destroy a member of this table.
    void add(Value& v);

    /// Snapshots, taken at construction, of the settings that may be enumerated.
    const std::vector<Value>& list() const { return list_; }

  private:
    std::vector<Value> list_;

  public:
    Value brightness;
    Value contrast;
    Value spatial_upscaling_factor;
    Value upscaling_algorithm;
    Value temporal_upscaling_factor;
    Value sharpening_level;
    Value denoising_level;
    Value spatial_zoom;
    Value vsync;
    Value status;
    Value demo_mode;
    Value show_original;
    Value motion_interpolation_method;
    Value offload_decoding;
    Value inloop_deblocking;
    Value recursive_filtering_threshold;
    Value volume;
    Value balance;
    Value eq_low;
    Value eq_mid;
    Value eq_high;
    Value stereo_enhancer;
    Value audio_dnr_level;
    Value audio_latency;
};

/// The one table, made before `main` and never destroyed: threads may read it until the very end.
extern Settings& master_settings;

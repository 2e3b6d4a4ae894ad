// SPDX-License-Identifier: MIT
#include "audio/audio_processor.h"

#include "audio/eq3band.h"
#include "audio/noise_reduction.h"
#include "audio/vol_pan_control.h"
#include "core/settings.h"

#include <cmath>
#include <cstdio>

namespace {

void report_failure() {
    std::fputs("audio_resample() failed\n", stderr);
}

/// Stores the means of `count` groups of four samples; returns the sample after them.
const float* store_means(float* places, int count, const float* x) {
    for (int i = 0; i < count; ++i, x += 4) {
        CircularBuffer<float>::Store(places[i], (x[0] + x[1] + x[2] + x[3]) / 4.0F);
    }
    return x;
}

/// Samples that do not fill a group of four at the end are left out.
void feed_scope(CircularBuffer<float>* scope, const float* plane, int frames) {
    if (!scope) return;
    const int count = frames / 4;
    float* first = nullptr;
    float* second = nullptr;
    int first_count = 0;
    int second_count = 0;
    scope->Lock(scope->WritePosition(), count, &first, &first_count, &second, &second_count);
    const float* rest = store_means(first, first_count, plane);
    store_means(second, second_count, rest);
    scope->Unlock();
    scope->IncrementWritePointer(count);
}

void reduce_noise(float* left, float* right, int frames) {
    audio_noisereduction.level = master_settings.audio_dnr_level.getValue();
    if (audio_noisereduction.level > 0.0F) audio_noisereduction.work(left, right, frames);
}

void control_volume(float* left, float* right, int frames) {
    vol_pan_control.volume = master_settings.volume.getValue();
    vol_pan_control.balance = master_settings.balance.getValue();
    vol_pan_control.width = master_settings.stereo_enhancer.getValue();
    vol_pan_control.work(left, right, frames);
}

/// Ten decibels are a factor of ten, as for the volume.
float linear_gain(const Value& decibels) {
    return static_cast<float>(std::pow(10.0, static_cast<double>(decibels.getValue() * 0.1F)));
}

void equalise(float* left, float* right, int frames, int sample_rate) {
    const float low = linear_gain(master_settings.eq_low);
    const float mid = linear_gain(master_settings.eq_mid);
    const float high = linear_gain(master_settings.eq_high);
    for (Eq3Band& equaliser : eq3band) {
        equaliser.low_gain = low;
        equaliser.mid_gain = mid;
        equaliser.high_gain = high;
        equaliser.update(static_cast<float>(sample_rate));
    }
    eq3band[0].work(left, frames);
    eq3band[1].work(right, frames);
}

}  // namespace

void audio_processor(const AudioChain& chain, short* samples, int frames, int /*channels*/,
                     int /*extra*/, int sample_rate) {
    float left[max_block_frames];
    float right[max_block_frames];
    if (!chain.resampler_in || chain.resampler_in->convert(samples, left, right, frames) < 1) {
        report_failure();
        return;
    }
    feed_scope(chain.scope[0], left, frames);
    feed_scope(chain.scope[1], right, frames);
    reduce_noise(left, right, frames);
    control_volume(left, right, frames);
    equalise(left, right, frames, sample_rate);
    if (!chain.resampler_out || chain.resampler_out->convert(left, right, samples, frames) < 1) {
        report_failure();
    }
}

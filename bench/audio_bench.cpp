// SPDX-License-Identifier: MIT
// How much faster than playing is the processing of sound, and how near to the machine's limit is
// the convolution that dominates it? Leaves out decoding and the sound device.
#include "audio/allocation_counter.h"
#include "audio/audio_processor.h"
#include "audio/audio_settings.h"
#include "audio/fir_bank.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

namespace {

constexpr int sample_rate = 48000;
constexpr std::size_t block_frames = 1024;
constexpr int second_frames = 48128;  // a second in whole blocks

/// Two tones, unlike on both sides, with hiss under them.
std::vector<short> second_of_sound() {
    std::mt19937 generator(1);
    std::normal_distribution<double> hiss(0.0, 60.0);
    std::vector<short> samples;
    for (int i = 0; i < second_frames; ++i) {
        const double t = 2.0 * 3.14159265358979 * i / sample_rate;
        const double middle = 8000.0 * std::sin(440.0 * t);
        const double side = 3000.0 * std::sin(1500.0 * t);
        samples.push_back(static_cast<short>(middle + side + hiss(generator)));
        samples.push_back(static_cast<short>(middle - side + hiss(generator)));
    }
    return samples;
}

/// Processes a second of sound per iteration.
void process(benchmark::State& state) {
    const std::vector<short> sound = second_of_sound();
    const auto in = AudioConverter::to_planes(2, sample_rate);
    const auto out = AudioConverter::to_samples(sample_rate);
    const object_ref<CircularBuffer<float>> left(new CircularBuffer<float>(4096));
    const object_ref<CircularBuffer<float>> right(new CircularBuffer<float>(4096));
    const AudioChain chain = {in.get(), out.get(), {left, right}};
    std::array<short, 2 * block_frames> block;
    double seconds = 0;
    long blocks = 0;
    const long allocations = heap_allocations();
    for (auto _ : state) {
        for (std::size_t i = 0; i < sound.size(); i += block.size()) {
            std::copy_n(sound.data() + i, block.size(), block.data());
            audio_processor(chain, block.data(), int(block_frames), 2, 2, sample_rate);
            benchmark::ClobberMemory();
            ++blocks;
        }
        seconds += double(second_frames) / sample_rate;
    }
    state.counters["allocations_per_block"] =
        double(heap_allocations() - allocations) / double(blocks);
    state.counters["times_real_time"] = {seconds, benchmark::Counter::kIsRate};
}

void default_settings(benchmark::State& state) {
    process(state);
}

void equaliser_alone(benchmark::State& state) {
    master_settings.eq_low.setValue(3);
    process(state);
    restore_sound_settings();
}

void everything_on(benchmark::State& state) {
    turn_all_sound_settings_on();
    process(state);
    restore_sound_settings();
}

using float4 = float __attribute__((vector_size(16)));

/// Makes the compiler believe that `v` changes, so that the product stays in the loop.
inline void touch(float4& v) {
#if defined(__x86_64__)
    asm volatile("" : "+x"(v));
#elif defined(__aarch64__)
    asm volatile("" : "+w"(v));
#else
    benchmark::DoNotOptimize(v);
#endif
}

/// Multiply-adds of floats per second in registers alone: eight sums, so that no addition waits for
/// the one before it.
double peak_per_second() {
    constexpr int rounds = 2'000'000;
    float4 a{}, b{}, c{}, d{}, e{}, f{}, g{}, h{};
    float4 x = {1.0F, 2.0F, 3.0F, 4.0F};
    const float4 y = {0.5F, 0.25F, 0.125F, 0.0625F};
    const auto add_to = [&x, y](float4& sum) {
        touch(x);
        sum += x * y;
    };
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < rounds; ++i) {
        add_to(a);
        add_to(b);
        add_to(c);
        add_to(d);
        add_to(e);
        add_to(f);
        add_to(g);
        add_to(h);
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    float4 total = a + b + c + d + e + f + g + h;
    touch(total);
    return 32.0 * rounds / taken.count();
}

double best_peak_per_second() {
    double best = 0;
    for (int i = 0; i < 20; ++i)
        best = std::max(best, peak_per_second());
    return best;
}

void direct_convolution(benchmark::State& state) {
    constexpr std::size_t taps = 256;
    std::mt19937 generator(1);
    std::normal_distribution<float> normal;
    std::array<float, taps> in;
    std::array<float, taps> coefficients;
    std::array<float, 2 * taps> out{};
    for (float& x : in)
        x = normal(generator);
    for (float& x : coefficients)
        x = normal(generator) * 0.01F;
    const double peak = best_peak_per_second();
    const auto start = std::chrono::steady_clock::now();
    for (auto _ : state) {
        std::fill(out.begin(), out.end(), 0.0F);
        convolution(in.data(), out.data(), 256, 256, coefficients.data());
        benchmark::ClobberMemory();
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    const double products = double(taps) * taps * double(state.iterations());
    state.counters["multiply_adds_per_second"] = products / taken.count();
    state.counters["peak_per_second"] = peak;
    state.counters["share_of_peak"] = products / taken.count() / peak;
}

BENCHMARK(default_settings)->Unit(benchmark::kMillisecond);
BENCHMARK(equaliser_alone)->Unit(benchmark::kMillisecond);
BENCHMARK(everything_on)->Unit(benchmark::kMillisecond);
BENCHMARK(direct_convolution)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();

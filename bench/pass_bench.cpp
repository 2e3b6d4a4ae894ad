// SPDX-License-Identifier: MIT
// What each enhancement pass costs, alone and in a whole picture.
//
//     bench_passes [WIDTHxHEIGHT...]        (640x360 and 1280x720 where none is given)
//     bench_passes growth                   (whole pictures only, by size and by factor)
//
// Every figure is the median of several rounds; "core ms" is processor time of all threads. "Moved"
// counts each input once and the target once, the least that a pass can do; the share is of the
// bandwidth that copying memory with every core reaches on the same machine in the same run. What
// it leaves out: decoding, upload, and drawing into the window.

#include "gpu/block_textures.h"
#include "gpu/gl_bindings.h"
#include "gpu/gl_context.h"
#include "gpu/spatial_denoising.h"
#include "gpu/spatial_denoising_passes.h"
#include "gpu/spatial_sr.h"
#include "gpu/spatial_sr_passes.h"
#include "gpu/temporal_upscaling.h"
#include "gpu/work_texture.h"
#include "measure.h"
#include "platform/window.h"

#include <SDL.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <random>
#include <thread>
#include <utility>
#include <vector>

namespace {

struct Cost {
    double ms;       // until it is drawn
    double core_ms;  // processor time of all threads
};

// What one call of `draw` takes, the drawing of it included.
Cost cost_of(const std::function<void()>& draw) {
    constexpr std::size_t rounds = 9;
    constexpr double shortest_round = 20.0;  // ms, so that the waiting at its end does not count
    draw();
    glFinish();
    int calls = 1;
    std::vector<double> wall;
    std::vector<double> processor;
    const auto enough = [&wall] {
        // What takes long anyway is disturbed less.
        return wall.size() >= (wall.empty() || wall[0] < 200.0 ? rounds : 3U);
    };
    while (!enough()) {
        const auto start = Clock::now();
        const double processor_start = processor_ms();
        for (int i = 0; i < calls; ++i)
            draw();
        glFinish();
        const double ms = ms_since(start);
        if (ms < shortest_round && wall.empty()) {
            calls *= 2;
            continue;
        }
        wall.push_back(ms / calls);
        processor.push_back((processor_ms() - processor_start) / calls);
    }
    return {median(wall), median(processor)};
}

// Bytes per second that copying moves, reading and writing counted.
double memory_bandwidth() {
    constexpr std::size_t bytes = std::size_t{64} << 20;
    const unsigned cores = std::max(std::thread::hardware_concurrency(), 1U);
    std::vector<double> results;
    for (int round = 0; round < 5; ++round) {
        std::vector<std::vector<char>> from(cores, std::vector<char>(bytes, 1));
        std::vector<std::vector<char>> to(cores, std::vector<char>(bytes, 2));
        std::vector<std::thread> threads;
        const auto start = Clock::now();
        for (unsigned i = 0; i < cores; ++i) {
            threads.emplace_back([&, i] {
                for (int k = 0; k < 4; ++k)
                    std::memcpy(to[i].data(), from[i].data(), bytes);
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        results.push_back(2.0 * 4 * static_cast<double>(bytes) * cores / (ms_since(start) / 1e3));
    }
    return median(results);
}

void fill(gl_texture_resource* tex, unsigned seed) {
    std::mt19937 generator(seed);
    std::vector<unsigned char> texels(static_cast<std::size_t>(tex->width()) *
                                      static_cast<std::size_t>(tex->height()) * 4);
    for (unsigned char& value : texels)
        value = static_cast<unsigned char>(generator() >> 24);
    glBindTexture(tex->target(), tex->name());
    glTexSubImage2D(tex->target(), 0, 0, 0, tex->width(), tex->height(), GL_RGBA, GL_UNSIGNED_BYTE,
                    texels.data());
    glBindTexture(tex->target(), 0);
}

// A picture with every input that the passes read.
void make_picture(VideoPicture& pic, int width, int height, int factor, unsigned seed) {
    pic.width = width;
    pic.height = height;
    pic.block_width = pic.block_height = 8;
    pic.grid_width = 2 * ((width + 15) / 16);
    pic.grid_height = 2 * ((height + 15) / 16);
    pic.motion_vectors.allocate(pic.grid_height + 1, pic.grid_width + 1);
    pic.quantization_table.allocate(pic.grid_height, pic.grid_width);
    pic.quantization_table.fill(12);
    std::mt19937 generator(seed);
    for (int r = 0; r < pic.grid_height; ++r) {
        for (int c = 0; c < pic.grid_width; ++c) {
            pic.motion_vectors[r][c] = {static_cast<int>(generator() % 17) - 8,
                                        static_cast<int>(generator() % 17) - 8};
        }
    }
    pic.rgb = new gl_texture_resource(height, width, GL_RGBA, nullptr);
    pic.enhanced = new gl_texture_resource(height * factor, width * factor, 0, nullptr);
    pic.motion = new gl_texture_resource(pic.grid_height, pic.grid_width, 0, nullptr);
    fill(pic.rgb, seed);
    fill(pic.enhanced, seed + 1);
    upload_block_vectors(pic, pic.motion);
    pic.uploaded = true;
}

int bytes_per_texel(const gl_texture_resource* tex) {
    return tex->internal_format() == GL_RGBA ? 4 : 8;
}

double bytes_of(std::initializer_list<gl_texture_resource*> used) {
    double bytes = 0.0;
    for (const gl_texture_resource* tex : used) {
        bytes += static_cast<double>(tex->width()) * tex->height() * bytes_per_texel(tex);
    }
    return bytes;
}

class Table {
  public:
    explicit Table(double bandwidth) : bandwidth_(bandwidth) {}

    void heading(const char* text, int width, int height) const {
        std::printf("\n%s, %d x %d\n%-28s %9s %9s %7s %9s %7s\n", text, width, height, "", "ms",
                    "core ms", "a pic", "MB moved", "share");
    }

    // A pass that runs `count` times a picture and touches the textures `used`.
    void pass(const char* name, int count, std::initializer_list<gl_texture_resource*> used,
              const std::function<void()>& draw) const {
        const auto [ms, core_ms] = cost_of(draw);
        const double bytes = bytes_of(used);
        std::printf("%-28s %9.3f %9.3f %6dx %9.2f %6.1f%%\n", name, ms, core_ms, count, bytes / 1e6,
                    100.0 * bytes / (ms / 1e3) / bandwidth_);
    }

    void picture(const char* name, const std::function<void()>& draw) const {
        const auto [ms, core_ms] = cost_of(draw);
        std::printf("%-28s %9.3f %9.3f\n", name, ms, core_ms);
        std::fflush(stdout);
    }

  private:
    double bandwidth_;
};

void super_resolution(const Table& table, int width, int height, int factor) {
    VideoPicture cur;
    VideoPicture ref;
    make_picture(cur, width, height, factor, 1);
    make_picture(ref, width, height, factor, 2);
    ref.is_enhanced = true;
    table.heading(factor == 2 ? "Super-resolution, 2x" : "Super-resolution, 3x", width, height);
    {
        const int w = width * factor;
        const int h = height * factor;
        const WorkTexture result(h, w, GL_RGBA);
        const WorkTexture errors(h, w, GL_RGBA);
        const WorkTexture scratch(h, w, GL_RGBA);
        const sr::Displacement d = sr::displacements[0];
        const sr::Reference reference{ref.enhanced, ref.rgb, cur.motion, block_size(cur)};
        table.pass("code_frag_Ia", 0, {cur.enhanced, cur.rgb},
                   [&] { sr::estimate(cur.enhanced, cur.rgb); });
        table.pass("code_frag_Ib", 1, {cur.enhanced, cur.rgb, ref.enhanced, ref.rgb, cur.motion},
                   [&] { sr::compensated_estimate(cur.enhanced, cur.rgb, reference, factor); });
        table.pass("code_frag_II", 1, {result, cur.enhanced},
                   [&] { sr::first_candidates(result, cur.enhanced); });
        table.pass("code_frag_III", 5, {errors, cur.rgb, cur.enhanced},
                   [&] { sr::differences(errors, cur.rgb, cur.enhanced, d, factor); });
        table.pass("code_frag_IVa", 5, {scratch, errors},
                   [&] { sr::average_rows(scratch, errors); });
        table.pass("code_frag_Va", 5, {errors, scratch},
                   [&] { sr::average_columns(errors, scratch); });
        table.pass("code_frag_VI", 5, {scratch, cur.enhanced, result, errors},
                   [&] { sr::best_candidates(scratch, cur.enhanced, result, errors, d); });
        table.pass("code_frag_VII", 1, {cur.enhanced, result},
                   [&] { sr::winners(cur.enhanced, result); });
    }
    table.picture("picture", [&] { spatial_sr(&cur, &ref, factor); });
}

void denoising_passes(const Table& table, const VideoPicture& cur, const VideoPicture& ref) {
    const WorkTexture sum(cur.height, cur.width, 0);
    const WorkTexture distances(cur.height, cur.width, 0);
    const WorkTexture scratch(cur.height, cur.width, 0);
    const WorkTexture quantisers(block_rows(cur), block_columns(cur), 0);
    upload_block_quantisers(cur, quantisers);
    const denoising::Displacement d = denoising::displacements[0];
    const denoising::Reference reference{ref.enhanced, cur.motion, block_size(cur), 0.025F};
    const denoising::Steering steering{quantisers, block_size(cur), denoising::fall_off(20, 1)};
    gl_texture_resource* out = cur.enhanced;
    table.pass("code_frag_Ib", 1, {out, cur.rgb, ref.enhanced, cur.motion},
               [&] { denoising::recursive_estimate(out, cur.rgb, reference, 1); });
    table.pass("code_frag_II", 1, {sum, out}, [&] { denoising::start_sum(sum, out); });
    table.pass("code_frag_III", 12, {distances, cur.rgb, out},
               [&] { denoising::distances(distances, cur.rgb, out, d, 1); });
    table.pass("code_frag_IVb", 12, {scratch, distances},
               [&] { denoising::sum_rows(scratch, distances, 1); });
    table.pass("code_frag_IVa (factor 3)", 0, {scratch, distances},
               [&] { denoising::sum_rows(scratch, distances, 3); });
    table.pass("code_frag_Vb", 12, {distances, scratch, quantisers},
               [&] { denoising::weights(distances, scratch, steering, d, 1); });
    table.pass("code_frag_Va (factor 3)", 0, {distances, scratch, quantisers},
               [&] { denoising::weights(distances, scratch, steering, d, 3); });
    table.pass("code_frag_VI", 12, {scratch, out, sum, distances},
               [&] { denoising::add_weighted(scratch, out, sum, distances, d); });
    table.pass("code_frag_VII", 1, {out, sum}, [&] { denoising::weighted_mean(out, sum); });
    table.pass("hor_filter", 0, {scratch, out}, [&] { denoising::sharpen_rows(scratch, out); });
    table.pass("ver_filter", 0, {sum, scratch, out},
               [&] { denoising::sharpen_columns(sum, scratch, out, 0.5F); });
}

void denoising_and_sharpening(const Table& table, int width, int height) {
    VideoPicture cur;
    VideoPicture ref;
    make_picture(cur, width, height, 1, 1);
    make_picture(ref, width, height, 1, 2);
    ref.is_enhanced = true;
    table.heading("Denoising and sharpening, 1x", width, height);
    denoising_passes(table, cur, ref);
    table.picture("picture", [&] { spatial_deblocking_and_denoising(&cur, &ref, 1, 20, 0, 1); });
    table.picture("picture, sharpened",
                  [&] { spatial_deblocking_and_denoising(&cur, &ref, 1, 20, 0.3F, 1); });
    table.picture("sharpening alone", [&] { sharpening_filter(cur.enhanced, cur.enhanced, 0.3F); });
}

void interpolation(const Table& table, int width, int height, bool enhanced) {
    VideoPicture cur;
    VideoPicture prev;
    make_picture(cur, width, height, 1, 1);
    make_picture(prev, width, height, 1, 2);
    cur.is_enhanced = prev.is_enhanced = enhanced;
    gl_texture_resource* a = cur.source();
    gl_texture_resource* b = prev.source();
    const object_ref<gl_texture_resource> out(new gl_texture_resource(height, width, 0, nullptr));
    table.heading(enhanced ? "Interpolation of enhanced pictures" : "Interpolation of pictures",
                  width, height);
    table.pass("code_frag_off", 0, {out, a}, [&] { temporal_upscaling_off(out, &cur); });
    table.pass("code_frag_blend", 1, {out, a, b},
               [&] { temporal_upscaling_blend(out, &cur, &prev, 2, 5); });
    table.pass("code_frag_motioncompensated", 1, {out, a, b, cur.motion},
               [&] { temporal_upscaling_motioncompensated(out, &cur, &prev, 2, 5); });
    table.pass("..._4nb", 1, {out, a, b, cur.motion}, [&] {
        temporal_upscaling_motioncompensated_overlapping_blocks_4nb(out, &cur, &prev, 2, 5);
    });
    table.pass("..._8nb", 1, {out, a, b, cur.motion}, [&] {
        temporal_upscaling_motioncompensated_overlapping_blocks_8nb(out, &cur, &prev, 2, 5);
    });
    std::fflush(stdout);
}

double interpolation_ms(int width, int height) {
    VideoPicture cur;
    VideoPicture prev;
    make_picture(cur, width, height, 1, 1);
    make_picture(prev, width, height, 1, 2);
    const object_ref<gl_texture_resource> out(new gl_texture_resource(height, width, 0, nullptr));
    return cost_of([&] {
               temporal_upscaling_motioncompensated_overlapping_blocks_4nb(out, &cur, &prev, 2, 5);
           })
        .ms;
}

// An enhancement of a picture for which there is a previous one.
template <class Enhance>
double enhancement_ms(int width, int height, int factor, Enhance enhance) {
    VideoPicture cur;
    VideoPicture ref;
    make_picture(cur, width, height, factor, 1);
    make_picture(ref, width, height, factor, 2);
    ref.is_enhanced = true;
    const double ms = cost_of([&] { enhance(&cur, &ref); }).ms;
    clear_texture_cache();
    return ms;
}

void growth_row(const char* name, int width, int height, int factor, double ms) {
    const double megapixels = 1e-6 * width * height * factor * factor;
    std::printf("%-26s %5d x %-5d %dx %10.2f %16.2f\n", name, width, height, factor, ms,
                ms / megapixels);
    std::fflush(stdout);
}

// What a picture costs, and that for a million pixels made.
void growth() {
    std::printf("\n%-26s %13s %2s %10s %16s\n", "growth", "size", "", "ms", "ms per megapixel");
    const std::pair<int, int> sizes[] = {{640, 360}, {1280, 720}, {1920, 1080}, {3840, 2160}};
    for (const auto& [w, h] : sizes)
        growth_row("interpolation, 4nb", w, h, 1, interpolation_ms(w, h));
    for (const auto& [w, h] : sizes) {
        growth_row("denoising", w, h, 1,
                   enhancement_ms(w, h, 1, [](VideoPicture* cur, VideoPicture* ref) {
                       spatial_deblocking_and_denoising(cur, ref, 1, 20, 0, 1);
                   }));
    }
    for (const int factor : {2, 3, 4}) {
        growth_row("super-resolution", 640, 360, factor,
                   enhancement_ms(640, 360, factor, [factor](VideoPicture* cur, VideoPicture* ref) {
                       spatial_sr(cur, ref, factor);
                   }));
    }
    for (const auto& [w, h] : {sizes[0], sizes[1], sizes[2]}) {
        growth_row("super-resolution", w, h, 2,
                   enhancement_ms(w, h, 2, [](VideoPicture* cur, VideoPicture* ref) {
                       spatial_sr(cur, ref, 2);
                   }));
    }
}

bool make_context() {
    if (SDL_Init(SDL_INIT_VIDEO | SDL_INIT_NOPARACHUTE) != 0 || !set_video_mode(320, 240)) {
        std::fprintf(stderr, "bench_passes: no window: %s\n", SDL_GetError());
        return false;
    }
    if (!load_gl()) return false;
    init_gl_state();
    reshape_gl(320, 240);
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (!make_context()) return 1;
    const double bandwidth = memory_bandwidth();
    std::printf("memory bandwidth %.1f GB/s\n", bandwidth / 1e9);
    const Table table(bandwidth);
    if (argc == 2 && std::strcmp(argv[1], "growth") == 0) {
        growth();
        SDL_Quit();
        return 0;
    }
    std::vector<const char*> sizes(argv + 1, argv + argc);
    if (sizes.empty()) sizes = {"640x360", "1280x720"};
    for (const char* size : sizes) {
        int width = 0;
        int height = 0;
        if (std::sscanf(size, "%dx%d", &width, &height) != 2 || width < 16 || height < 16) {
            std::fprintf(stderr, "bench_passes: not a size: %s\n", size);
            return 1;
        }
        super_resolution(table, width, height, 2);
        denoising_and_sharpening(table, width, height);
        interpolation(table, width, height, false);
        interpolation(table, width, height, true);
    }
    clear_texture_cache();
    SDL_Quit();
    return 0;
}

// SPDX-License-Identifier: MIT
#include "gpu/cpu_twins.h"

#include <algorithm>
#include <cmath>

namespace twins {

namespace {

// Four channels in double precision.
struct V {
    double c[4] = {0, 0, 0, 0};
};

V v(const Rgba& p) {
    return {{p.r, p.g, p.b, p.a}};
}
Rgba rgba(const V& p) {
    return {static_cast<float>(p.c[0]), static_cast<float>(p.c[1]), static_cast<float>(p.c[2]),
            static_cast<float>(p.c[3])};
}
V operator+(V a, const V& b) {
    for (int i = 0; i < 4; ++i)
        a.c[i] += b.c[i];
    return a;
}
V operator-(V a, const V& b) {
    for (int i = 0; i < 4; ++i)
        a.c[i] -= b.c[i];
    return a;
}
V operator*(double k, V a) {
    for (double& value : a.c)
        value *= k;
    return a;
}

double absolute_sum_rgb(const V& a) {
    return std::abs(a.c[0]) + std::abs(a.c[1]) + std::abs(a.c[2]);
}

double kernel(double distance) {
    const double x = std::abs(distance);
    if (x < 1.0) return 1.5 * x * x * x - 2.5 * x * x + 1.0;
    if (x < 2.0) return -0.5 * x * x * x + 2.5 * x * x - 4.0 * x + 2.0;
    return 0.0;
}

V bilinear(const Image& image, double s, double t) {
    const double x = std::floor(s - 0.5);
    const double y = std::floor(t - 0.5);
    const double fx = s - 0.5 - x;
    const double fy = t - 0.5 - y;
    const auto texel = [&](int dx, int dy) {
        return v(image.clamped(static_cast<int>(x) + dx, static_cast<int>(y) + dy));
    };
    return (1 - fx) * (1 - fy) * texel(0, 0) + fx * (1 - fy) * texel(1, 0) +
           (1 - fx) * fy * texel(0, 1) + fx * fy * texel(1, 1);
}

// The vector of a cell, counted from the top left; cells outside repeat the edge.
MotionVector vector_at(const VideoPicture& pic, int column, int row) {
    if (pic.motion_vectors.empty()) return {};
    return pic.motion_vectors[std::clamp(row, 0, pic.grid_height - 1)]
                             [std::clamp(column, 0, pic.grid_width - 1)];
}

double quantiser_at(const VideoPicture& pic, int column, int row) {
    if (pic.quantization_table.empty()) return 1.0 / 127.0;
    return pic.quantization_table[std::clamp(row, 0, pic.grid_height - 1)]
                                 [std::clamp(column, 0, pic.grid_width - 1)] /
           127.0;
}

template <class Texel>
Image each(int width, int height, const Texel& texel) {
    return make_image(width, height, [&](int x, int y) { return rgba(texel(x, y)); });
}

int cell(double position, int size) {
    return static_cast<int>(std::floor(position / size));
}

// Windows over a block, from their table: own, before, behind, own and half of the neighbours.
struct Window {
    double own, before, behind, wide;
};
Window window(int position, int size) {
    const int half = size / 2;
    Window w{};
    if (position < half) {
        w.own = (position + 1) / (size * 0.5);
        w.before = 1.0 - w.own;
    } else if (size - 1 - position < half) {
        w.own = (size - position) / (size * 0.5);
        w.behind = 1.0 - w.own;
    }
    w.wide = w.own + 0.5 * (w.before + w.behind);
    return w;
}

double smoothstep(double low, double high, double x) {
    const double t = std::clamp((x - low) / (high - low), 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

// A vector in enhanced texels, times the phase.
struct Shift {
    double x, y;
};

// Blends predictions by several vectors, guards against wrong ones, and fades.
template <class Predict>
Image compensated(const Image& prev, const Image& cur, double phase, int T,
                  const Predict& predict) {
    const double alpha = std::clamp(phase, 0.0, static_cast<double>(T)) / T;
    return each(cur.width(), cur.height(), [&](int x, int y) {
        const V now = v(cur.at(x, y));
        V mc = predict(x, y, alpha);
        const double e = absolute_sum_rgb(mc - now);
        mc = mc + smoothstep(0.02, 0.15, e) * (v(prev.at(x, y)) - mc);
        return mc + alpha * (now - mc);
    });
}

Shift average(MotionVector a, MotionVector b) {
    return {0.5 * (a.x + b.x), 0.5 * (a.y + b.y)};
}

}  // namespace

Rgba catmull_rom(const Image& image, double s, double t) {
    const int x0 = static_cast<int>(std::floor(s - 0.5));
    const int y0 = static_cast<int>(std::floor(t - 0.5));
    V sum;
    for (int y = y0 - 1; y <= y0 + 2; ++y) {
        for (int x = x0 - 1; x <= x0 + 2; ++x)
            sum = sum + kernel(s - 0.5 - x) * kernel(t - 0.5 - y) * v(image.clamped(x, y));
    }
    return rgba(sum);
}

Image sr_Ia(const Image& rgb, int f) {
    return make_image(rgb.width() * f, rgb.height() * f,
                      [&](int x, int y) { return catmull_rom(rgb, (x + 0.5) / f, (y + 0.5) / f); });
}

Image sr_Ib(const Image& rgb, const Image& ref_enhanced, const Image& ref_rgb,
            const VideoPicture& cur, int f) {
    return each(rgb.width() * f, rgb.height() * f, [&](int x, int y) {
        const double s = (x + 0.5) / f;
        const double t = (y + 0.5) / f;
        const V now = v(catmull_rom(rgb, s, t));
        if (x % f == 0 && y % f == 0) return now;
        const MotionVector mv =
            vector_at(cur, static_cast<int>(std::floor(0.5 + s / cur.block_width)),
                      static_cast<int>(std::floor(0.5 + t / cur.block_height)));
        const V mc = v(ref_enhanced.clamped(x + f * mv.x, y + f * mv.y));
        const V residual = now - bilinear(ref_rgb, s + mv.x, t + mv.y);
        return mc + residual + 0.5 * (now - mc - residual);
    });
}

Image sr_II(const Image& estimate) {
    return make_image(estimate.width(), estimate.height(), [&](int x, int y) {
        const Rgba& p = estimate.at(x, y);
        return Rgba{p.r, p.g, p.b, 8.0F / 255.0F};
    });
}

Image sr_III(const Image& rgb, const Image& estimate, int dx, int dy, int f) {
    return each(estimate.width(), estimate.height(), [&](int x, int y) {
        const V central = bilinear(rgb, (x + 0.5) / f, (y + 0.5) / f);
        const auto error = [&](int ox, int oy) {
            return absolute_sum_rgb(v(estimate.clamped(x + dx + ox, y + dy + oy)) - central);
        };
        return V{{error(0, 0), error(0, 1), error(1, 0), error(1, 1)}};
    });
}

Image sr_IVa(const Image& differences) {
    return each(differences.width(), differences.height(), [&](int x, int y) {
        V sum;
        for (int k = -2; k <= 2; ++k)
            sum = sum + v(differences.clamped(x + k, y));
        return 0.2 * sum;
    });
}

Image sr_Va(const Image& averages) {
    return each(averages.width(), averages.height(), [&](int x, int y) {
        V sum;
        for (int k = -2; k <= 2; ++k)
            sum = sum + v(averages.clamped(x, y + k));
        return 0.2 * sum;
    });
}

Image sr_VI(const Image& estimate, const Image& result, const Image& errors, int dx, int dy) {
    constexpr int offsets[4][2] = {{0, 0}, {0, 1}, {1, 0}, {1, 1}};
    return make_image(estimate.width(), estimate.height(), [&](int x, int y) {
        Rgba best = result.at(x, y);
        const auto offer = [&](int cx, int cy, float error) {
            if (!(error <= best.a)) return;
            best = estimate.clamped(cx, cy);
            best.a = error;
        };
        const V forward = v(errors.at(x, y));
        const V backward = v(errors.clamped(x - dx, y - dy));
        for (int i = 0; i < 4; ++i)
            offer(x + dx + offsets[i][0], y + dy + offsets[i][1], static_cast<float>(forward.c[i]));
        for (int i = 0; i < 4; ++i)
            offer(x - dx - offsets[i][0], y - dy - offsets[i][1],
                  static_cast<float>(backward.c[i]));
        return best;
    });
}

Image sr_VII(const Image& result) {
    return make_image(result.width(), result.height(), [&](int x, int y) {
        const Rgba& p = result.at(x, y);
        return Rgba{p.r, p.g, p.b, 0.0F};
    });
}

Image denoise_Ib(const Image& rgb, const Image& ref_enhanced, const VideoPicture& cur, int f,
                 double threshold) {
    return each(rgb.width() * f, rgb.height() * f, [&](int x, int y) {
        const double s = (x + 0.5) / f;
        const double t = (y + 0.5) / f;
        const V now = v(catmull_rom(rgb, s, t));
        const MotionVector mv = vector_at(cur, cell(s, cur.block_width), cell(t, cur.block_height));
        const V mc = v(ref_enhanced.clamped(x + f * mv.x, y + f * mv.y));
        if (absolute_sum_rgb(now - mc) > threshold) return now;
        return mc + 0.01 * (now - mc);
    });
}

Image denoise_II(const Image& source) {
    const double weight = std::exp(4.0);
    return each(source.width(), source.height(), [&](int x, int y) {
        V sum = weight * v(source.at(x, y));
        sum.c[3] = weight;
        return sum;
    });
}

Image denoise_III(const Image& rgb, const Image& estimate, int dx, int dy, int f) {
    return each(estimate.width(), estimate.height(), [&](int x, int y) {
        const V central = bilinear(rgb, (x + 0.5) / f, (y + 0.5) / f);
        const auto distance = [&](int ox, int oy) {
            const V d = v(estimate.clamped(x + dx + ox, y + dy + oy)) - central;
            return d.c[0] * d.c[0] + d.c[1] * d.c[1] + d.c[2] * d.c[2] + d.c[3] * d.c[3];
        };
        return V{{distance(0, 0), distance(0, 1), distance(1, 0), distance(1, 1)}};
    });
}

Image denoise_IV(const Image& distances, int f) {
    const int reach = f > 2 ? 2 : 1;
    return each(distances.width(), distances.height(), [&](int x, int y) {
        V sum;
        for (int k = -reach; k <= reach; ++k)
            sum = sum + v(distances.clamped(x + k, y));
        return sum;
    });
}

Image denoise_V(const Image& row_sums, const VideoPicture& cur, double level, int dx, int dy,
                int f) {
    const int reach = f > 2 ? 2 : 1;
    const double h = 32.5125 / std::pow(f * 0.25, 2.0) * std::pow(10.0, level * 0.1);
    const auto quantiser = [&](int x, int y) {
        return quantiser_at(cur, cell((x + 0.5) / f, cur.block_width),
                            cell((y + 0.5) / f, cur.block_height));
    };
    return each(row_sums.width(), row_sums.height(), [&](int x, int y) {
        V msd;
        for (int k = -reach; k <= reach; ++k)
            msd = msd + v(row_sums.clamped(x, y + k));
        double q = quantiser(x, y);
        if (f <= 2) q = (q + quantiser(x + dx, y + dy)) / 2;
        V weight;
        for (int i = 0; i < 4; ++i)
            weight.c[i] = std::exp(4.0 - h * msd.c[i] * q * q);
        return weight;
    });
}

Image denoise_VI(const Image& source, const Image& sum, const Image& weights, int dx, int dy) {
    constexpr int offsets[4][2] = {{0, 0}, {0, 1}, {1, 0}, {1, 1}};
    return each(source.width(), source.height(), [&](int x, int y) {
        V total = v(sum.at(x, y));
        const auto add = [&](int sx, int sy, double weight) {
            V texel = v(source.clamped(sx, sy));
            texel.c[3] = 1.0;
            total = total + weight * texel;
        };
        const V forward = v(weights.at(x, y));
        const V backward = v(weights.clamped(x - dx, y - dy));
        for (int i = 0; i < 4; ++i) {
            const auto [ox, oy] = offsets[i];
            add(x + dx + ox, y + dy + oy, forward.c[i]);
            add(x - dx - ox, y - dy - oy, backward.c[i]);
        }
        return total;
    });
}

Image denoise_VII(const Image& sum) {
    return each(sum.width(), sum.height(), [&](int x, int y) {
        const V total = v(sum.at(x, y));
        return 1.0 / total.c[3] * total;
    });
}

Image hor_filter(const Image& in) {
    constexpr double taps[] = {0.0363, -0.1849, -0.2817, 2.3739, -0.2817, -0.1849, 0.0363};
    return each(in.width(), in.height(), [&](int x, int y) {
        V sum;
        for (int k = -3; k <= 3; ++k)
            sum = sum + taps[k + 3] * v(in.clamped(x + k, y));
        return sum;
    });
}

Image ver_filter(const Image& rows, const Image& in, double level) {
    constexpr double taps[] = {0.01861, -0.08674, -0.13400, 1.09828, -0.1340, -0.08674, 0.018611};
    const double alpha = level * 2.5;
    return each(in.width(), in.height(), [&](int x, int y) {
        V sum;
        for (int k = -3; k <= 3; ++k)
            sum = sum + taps[k + 3] * v(rows.clamped(x, y + k));
        return alpha * sum + (1.0 - alpha) * v(in.at(x, y));
    });
}

Image blend(const Image& prev, const Image& cur, double phase, int T) {
    return each(cur.width(), cur.height(), [&](int x, int y) {
        const V old = v(prev.at(x, y));
        return old + phase / T * (v(cur.at(x, y)) - old);
    });
}

Image motioncompensated(const Image& prev, const Image& cur, const VideoPicture& pic, double phase,
                        int T, int f) {
    const double alpha = std::clamp(phase, 0.0, static_cast<double>(T)) / T;
    return each(cur.width(), cur.height(), [&](int x, int y) {
        const MotionVector mv = vector_at(pic, cell((x + 0.5) / f, pic.block_width),
                                          cell((y + 0.5) / f, pic.block_height));
        const V mc = bilinear(prev, x + 0.5 + alpha * f * mv.x, y + 0.5 + alpha * f * mv.y);
        return mc + alpha * (v(cur.at(x, y)) - mc);
    });
}

Image overlapping_4nb(const Image& prev, const Image& cur, const VideoPicture& pic, double phase,
                      int T, int f) {
    return compensated(prev, cur, phase, T, [&](int x, int y, double alpha) {
        const double s = (x + 0.5) / f;
        const double t = (y + 0.5) / f;
        const int c = cell(s, pic.block_width);
        const int r = cell(t, pic.block_height);
        const Window w = window(static_cast<int>(s) - c * pic.block_width, pic.block_width);
        const Window u = window(static_cast<int>(t) - r * pic.block_height, pic.block_height);
        // A texel of the vector texture holds a cell's own vector and that of the next cell below
        // on the right. Texels outside repeat the edge, so beside the edges a neighbour's vector
        // can be that of another cell.
        const auto first = [&](int column, int row) { return vector_at(pic, column, row); };
        const auto second = [&](int column, int row) {
            return pic.motion_vectors[std::clamp(row, 0, pic.grid_height - 1) + 1]
                                     [std::clamp(column, 0, pic.grid_width - 1) + 1];
        };
        const MotionVector own = first(c, r);
        const auto predicted = [&](Shift mv, double weight) {
            return weight * bilinear(prev, x + 0.5 + alpha * f * mv.x, y + 0.5 + alpha * f * mv.y);
        };
        return predicted(average(own, own), w.own * u.own) +
               predicted(average(own, first(c, r - 1)), w.wide * u.before) +
               predicted(average(own, second(c, r - 1)), w.behind * u.wide) +
               predicted(average(own, second(c - 1, r)), w.wide * u.behind) +
               predicted(average(own, first(c - 1, r)), w.before * u.wide);
    });
}

Image overlapping_8nb(const Image& prev, const Image& cur, const VideoPicture& pic, double phase,
                      int T, int f) {
    return compensated(prev, cur, phase, T, [&](int x, int y, double alpha) {
        const double s = (x + 0.5) / f;
        const double t = (y + 0.5) / f;
        const int c = cell(s, pic.block_width);
        const int r = cell(t, pic.block_height);
        const Window w = window(static_cast<int>(s) - c * pic.block_width, pic.block_width);
        const Window u = window(static_cast<int>(t) - r * pic.block_height, pic.block_height);
        const MotionVector own = vector_at(pic, c, r);
        V sum;
        const auto add = [&](int column, int row, double weight) {
            const Shift mv = average(own, vector_at(pic, column, row));
            sum = sum +
                  weight * bilinear(prev, x + 0.5 + alpha * f * mv.x, y + 0.5 + alpha * f * mv.y);
        };
        add(c, r, w.own * u.own);
        add(c - 1, r - 1, w.before * u.before);
        add(c, r - 1, w.own * u.before);
        add(c + 1, r - 1, w.behind * u.before);
        add(c + 1, r, w.behind * u.own);
        add(c + 1, r + 1, w.behind * u.behind);
        add(c, r + 1, w.own * u.behind);
        add(c - 1, r + 1, w.before * u.behind);
        add(c - 1, r, w.before * u.own);
        return sum;
    });
}

}  // namespace twins

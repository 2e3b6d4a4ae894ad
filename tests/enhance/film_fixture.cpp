// SPDX-License-Identifier: MIT
#include "enhance/film_fixture.h"

#include "enhance/colour_conversion.h"
#include "enhance/enhance.h"
#include "enhance/film_reader.h"
#include "enhance/picture_sink.h"

extern "C" {
#include <libavutil/log.h>
}

#include <algorithm>
#include <cmath>
#include <random>

RgbPicture make_rgb(int width, int height, const std::function<int(int, int, int)>& texel) {
    RgbPicture picture{width, height, {}};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (int c = 0; c < 3; ++c)
                picture.bytes.push_back(
                    static_cast<std::uint8_t>(std::clamp(texel(x, y, c), 0, 255)));
        }
    }
    return picture;
}

RgbPicture moving_picture(int width, int height, int time) {
    return make_rgb(width, height, [time](int x, int y, int c) {
        const double u = x + 2.0 * time;
        return static_cast<int>(128 + 60 * std::sin(u * 0.2 + c) +
                                40 * std::sin(y * 0.3 + u * 0.1));
    });
}

RgbPicture noise_picture(int width, int height, unsigned seed) {
    std::mt19937 generator(seed);
    return make_rgb(width, height,
                    [&](int, int, int) { return static_cast<int>(generator() >> 24); });
}

RgbDifference difference(const RgbPicture& a, const RgbPicture& b) {
    if (a.width != b.width || a.height != b.height || a.bytes.size() != b.bytes.size()) return {};
    RgbDifference result{0, 0.0};
    double sum = 0.0;
    for (std::size_t i = 0; i < a.bytes.size(); ++i) {
        const int d = std::abs(int{a.bytes[i]} - int{b.bytes[i]});
        result.largest = std::max(result.largest, d);
        sum += d;
    }
    result.mean = sum / static_cast<double>(std::max<std::size_t>(a.bytes.size(), 1));
    return result;
}

Film read_film(const std::string& path) {
    Film film;
    FilmReader reader(path);
    ColourConversion colours;
    for (TimedFrame frame = reader.next(); frame.frame; frame = reader.next()) {
        RgbPicture picture{frame.frame->width, frame.frame->height, {}};
        picture.bytes.resize(picture.row_bytes() * static_cast<std::size_t>(picture.height));
        colours.to_rgb(*frame.frame, picture.bytes.data(), static_cast<int>(picture.row_bytes()));
        film.pictures.push_back(std::move(picture));
        film.seconds.push_back(frame.seconds);
    }
    return film;
}

void write_film(const std::string& path, const std::vector<RgbPicture>& pictures) {
    const auto sink = make_sink(path, SinkFormat{});
    double seconds = 0.0;
    for (const RgbPicture& picture : pictures) {
        sink->write(picture, seconds);
        seconds += 0.04;
    }
    sink->finish();
}

FilmTest::FilmTest() {
    av_log_set_level(AV_LOG_QUIET);
}

int FilmTest::enhance(const std::vector<std::string>& arguments) {
    std::vector<std::string> all{"vyx-enhance"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& argument : all)
        argv.push_back(argument.data());
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    const int status = enhance_main(static_cast<int>(argv.size()), argv.data());
    errors_ = testing::internal::GetCapturedStderr();
    output_ = testing::internal::GetCapturedStdout();
    return status;
}

// SPDX-License-Identifier: MIT
#include "enhance/enhance.h"

#include "enhance/enhance_error.h"
#include "enhance/enhancer.h"
#include "enhance/headless_context.h"
#include "enhance/picture_sink.h"

extern "C" {
#include <libavutil/log.h>
}

#include <unistd.h>

#include <exception>
#include <filesystem>

namespace {

// A line on a terminal that is written again and again.
class Progress {
  public:
    Progress(std::FILE* out, long total) : out_(out), total_(total) {}
    ~Progress() {
        if (out_ && count_ > 0) std::fputc('\n', out_);
    }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void step() {
        ++count_;
        if (!out_) return;
        if (total_ > 0) {
            std::fprintf(out_, "\r%ld of %ld pictures", count_, total_);
        } else {
            std::fprintf(out_, "\r%ld pictures", count_);
        }
        std::fflush(out_);
    }

  private:
    std::FILE* out_;
    long total_;
    long count_ = 0;
};

void refuse_same_file(const EnhanceOptions& options) {
    std::error_code not_there;
    if (std::filesystem::equivalent(options.input, options.output, not_there)) {
        throw EnhanceError("INPUT and OUTPUT are the same file, '" + options.input + "'");
    }
}

// The colours of the first picture hold for the film.
SinkFormat sink_format(const FilmFormat& film, const AVFrame& first, int temporal) {
    SinkFormat format;
    format.pictures_per_second = film.pictures_per_second * temporal;
    format.sample_aspect = film.sample_aspect;
    if (first.colorspace != AVCOL_SPC_RGB) format.colour_space = first.colorspace;
    format.primaries = first.color_primaries;
    format.transfer = first.color_trc;
    return format;
}

long pictures_to_take(const EnhanceOptions& options, const FilmFormat& film) {
    if (options.pictures < 0) return film.pictures;
    return film.pictures > 0 ? std::min(options.pictures, film.pictures) : options.pictures;
}

void warn(const EnhanceOptions& options, const FilmReader& film, const Enhancer& enhancer) {
    if (enhancer.spatial_factor() < options.spatial) {
        std::fprintf(stderr,
                     "vyx-enhance: enlarged %d times only: more is larger than OpenGL takes here\n",
                     enhancer.spatial_factor());
    }
    if (film.damaged_packets() > 0) {
        std::fprintf(stderr, "vyx-enhance: %ld damaged packets of '%s' were passed over\n",
                     film.damaged_packets(), options.input.c_str());
    }
}

}  // namespace

void enhance_film(const EnhanceOptions& options, std::FILE* progress) {
    refuse_same_file(options);
    FilmReader film(options.input);
    TimedFrame frame = film.next();
    if (!frame.frame) throw EnhanceError("no picture of '" + options.input + "' can be decoded");
    const auto sink =
        make_sink(options.output, sink_format(film.format(), *frame.frame, options.temporal));
    make_headless_context();
    Enhancer enhancer(options, film.format().codec, [&](const RgbPicture& picture, double seconds) {
        sink->write(picture, seconds);
    });
    {
        Progress line(progress, pictures_to_take(options, film.format()));
        for (long count = 0; frame.frame && count != options.pictures; ++count) {
            enhancer.push(frame);
            line.step();
            frame = film.next();
        }
    }
    enhancer.finish();
    sink->finish();
    warn(options, film, enhancer);
}

int enhance_main(int argc, char** argv) {
    av_log_set_level(AV_LOG_ERROR);
    try {
        std::string error;
        const EnhanceOptions options = parse_options({argv + 1, argv + argc}, error);
        if (!error.empty()) throw EnhanceError(error + "; --help explains");
        if (options.help) {
            std::fputs(options_help(), stdout);
            return 0;
        }
        enhance_film(options, isatty(STDERR_FILENO) ? stderr : nullptr);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vyx-enhance: %s\n", error.what());
        return 1;
    }
}

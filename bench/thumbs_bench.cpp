// SPDX-License-Identifier: MIT
// Makes thumbnails of films and tells how long that takes, beside libffmpegthumbnailer where that
// is installed.
//
//     bench_thumbs ROUNDS FILM...
//
// Both work in this process, in turns, film by film, on files that have been read before, and give
// 24-bit RGB in memory 192 pixels wide at most. One line per film and one for all: milliseconds,
// median and largest. What it leaves out: disks, and making a texture of the picture.

#include "measure.h"
#include "media/thumbnail_database.h"
#include "media/thumbnail_maker.h"
#include "media/thumbnail_size.h"

#ifdef HAVE_PEER
#include <libffmpegthumbnailer/videothumbnailerc.h>
#endif

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

double milliseconds_of(bool (*work)(const char*), const char* film) {
    const auto start = Clock::now();
    if (!work(film)) {
        std::fprintf(stderr, "%s: no thumbnail\n", film);
        std::exit(1);
    }
    return ms_since(start);
}

bool ours(const char* film) {
    Thumbnail thumbnail = create_thumbnail(film);
    const bool made = thumbnail.picture != nullptr;
    ThumbnailDatabase::Delete(thumbnail);
    return made;
}

#ifdef HAVE_PEER
bool peer(const char* film) {
    video_thumbnailer* maker = video_thumbnailer_create();
    image_data* picture = video_thumbnailer_create_image_data();
    maker->thumbnail_image_type = Rgb;
    video_thumbnailer_set_size(maker, thumbnail_width, 0);
    const int result = video_thumbnailer_generate_thumbnail_to_buffer(maker, film, picture);
    const bool made = result == 0 && picture->image_data_size > 0;
    video_thumbnailer_destroy_image_data(picture);
    video_thumbnailer_destroy(maker);
    return made;
}
#endif

struct Times {
    std::vector<double> ours;
    std::vector<double> peers;

    void add(const Times& more) {
        ours.insert(ours.end(), more.ours.begin(), more.ours.end());
        peers.insert(peers.end(), more.peers.begin(), more.peers.end());
    }
};

double largest(const std::vector<double>& values) {
    return *std::max_element(values.begin(), values.end());
}

void show(const char* name, const Times& times) {
    std::printf("%s: median %.1f ms, largest %.1f ms", name, median(times.ours),
                largest(times.ours));
    if (!times.peers.empty()) {
        std::printf("; peer %.1f ms, %.1f ms; ratio of medians %.2f", median(times.peers),
                    largest(times.peers), median(times.ours) / median(times.peers));
    }
    std::puts("");
}

Times measure(const char* film, int rounds) {
    Times times;
    ours(film);  // the file is in memory from here on
    for (int i = 0; i < rounds; ++i) {
        times.ours.push_back(milliseconds_of(ours, film));
#ifdef HAVE_PEER
        times.peers.push_back(milliseconds_of(peer, film));
#endif
    }
    return times;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fputs("usage: bench_thumbs ROUNDS FILM...\n", stderr);
        return 2;
    }
    Times all;
    for (int i = 2; i < argc; ++i) {
        const Times times = measure(argv[i], std::max(std::atoi(argv[1]), 1));
        show(argv[i], times);
        all.add(times);
    }
    show("all", all);
}

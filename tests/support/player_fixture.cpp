// SPDX-License-Identifier: MIT
#include "support/player_fixture.h"

#include "core/settings.h"
#include "player/picture_queue.h"
#include "player/video_refresh.h"

#include <SDL.h>

#include <algorithm>
#include <chrono>
#include <filesystem>

std::string clip(const std::string& name) {
    return std::string(VYX_TEST_MEDIA) + "/" + name;
}

void PlayerTest::SetUp() {
    GlTest::SetUp();
    av_log_set_level(AV_LOG_ERROR);
    SDL_Event event;
    while (SDL_PollEvent(&event)) {}
}

void PlayerTest::TearDown() {
    close_all_streams();
    GlTest::TearDown();
}

VideoState* PlayerTest::open(const std::string& path, const StreamOptions& options) {
    const std::string name = path.find('/') == std::string::npos ? clip(path) : path;
    return stream_open(name.c_str(), "test", nullptr, options);
}

void PlayerTest::pump() {
    SDL_Event event;
    while (SDL_PollEvent(&event)) {
        auto* is = static_cast<VideoState*>(event.user.data1);
        switch (event.type) {
            case event_alloc_picture:
                if (stream_is_open(is)) alloc_picture(is);
                break;
            case event_failed:
                failed_.push_back(is);
                break;
            case event_end_of_stream:
                ++ends_;
                break;
            default:
                break;
        }
    }
}

bool PlayerTest::failed(const VideoState* is) const {
    return std::find(failed_.begin(), failed_.end(), is) != failed_.end();
}

bool PlayerTest::wait_until(const std::function<bool()>& done, double seconds) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    for (;;) {
        pump();
        if (done()) return true;
        if (std::chrono::steady_clock::now() > deadline) return false;
        SDL_Delay(1);
    }
}

VideoPicture* PlayerTest::head(VideoState* is) {
    const MutexLock lock(is->picture_queue_mutex);
    if (is->picture_queue_size == 0) return nullptr;
    return &is->pictures[static_cast<std::size_t>(is->picture_queue_rindex)];
}

std::vector<TakenPicture> PlayerTest::take(VideoState* is, std::size_t count) {
    std::vector<TakenPicture> taken;
    const int ends_before = ends_;
    wait_until(
        [&] {
            while (VideoPicture* picture = taken.size() < count ? head(is) : nullptr) {
                taken.push_back({picture->pts, picture->width, picture->height,
                                 picture->motion_vectors, picture->quantization_table});
                release_picture(is);
            }
            return taken.size() >= count || ends_ > ends_before || failed(is);
        },
        60.0);
    return taken;
}

int thread_count() {
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return static_cast<int>(std::distance(begin(tasks), end(tasks)));
}

int read_number(int width, int height, const std::function<float(int x, int y)>& brightness) {
    constexpr int bits = 8;
    const int side = width / bits;
    const int row = std::min(side / 4, height - 1);
    int number = 0;
    for (int bit = 0; bit < bits; ++bit) {
        if (brightness(bit * side + side / 2, row) > 0.5F) number |= 1 << bit;
    }
    return number;
}

// SPDX-License-Identifier: MIT
#include "media/film_maker.h"

#include "media/ffmpeg_handles.h"
#include "media/thumbnail_maker.h"
#include "platform/sync.h"
#include "platform/threads.h"

extern "C" {
#include <libavutil/log.h>
}

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>

std::atomic<int> scalers_made{0};
std::atomic<bool> scalers_wait{false};
std::atomic<bool> scaler_waits{false};
std::atomic<bool> scalers_fail{false};
std::atomic<bool> allocations_fail{false};
std::atomic<int> clock_ms{-1};
std::atomic<int> abort_after_packets{0};
std::atomic<int> packets_after_abort{0};
std::atomic<int> worker_pauses{0};
std::atomic<int> worker_pause_ms{0};

namespace {
std::atomic<bool> test_is_locking{false};
}

extern "C" {
int __real_SDL_mutexP(SDL_mutex* mutex);
int __wrap_SDL_mutexP(SDL_mutex* mutex) {
    const bool test = thread_role() != ThreadRole::thumbs;
    if (test) test_is_locking = true;
    const int result = __real_SDL_mutexP(mutex);
    if (test) test_is_locking = false;
    return result;
}

SwsContext* __real_sws_getContext(int, int, AVPixelFormat, int, int, AVPixelFormat, int, SwsFilter*,
                                  SwsFilter*, const double*);
SwsContext* __wrap_sws_getContext(int w, int h, AVPixelFormat format, int to_w, int to_h,
                                  AVPixelFormat to_format, int flags, SwsFilter* from,
                                  SwsFilter* to, const double* parameters) {
    scaler_waits = scalers_wait.load();
    ++scalers_made;
    while (scalers_wait && !test_is_locking)
        std::this_thread::yield();
    scaler_waits = false;
    if (scalers_fail) return nullptr;
    return __real_sws_getContext(w, h, format, to_w, to_h, to_format, flags, from, to, parameters);
}

void* __real_av_mallocz(std::size_t size);
void* __wrap_av_mallocz(std::size_t size) {
    return allocations_fail ? nullptr : __real_av_mallocz(size);
}

int __real_av_read_frame(AVFormatContext* format, AVPacket* packet);
int __wrap_av_read_frame(AVFormatContext* format, AVPacket* packet) {
    const int result = __real_av_read_frame(format, packet);
    if (result >= 0 && bAbort) ++packets_after_abort;
    if (result >= 0 && abort_after_packets > 0 && --abort_after_packets == 0) {
        packets_after_abort = 0;
        bAbort = true;
    }
    return result;
}

void __real_SDL_Delay(Uint32 ms);
void __wrap_SDL_Delay(Uint32 ms) {
    if (thread_role() == ThreadRole::thumbs) {
        worker_pause_ms = static_cast<int>(ms);
        ++worker_pauses;
    }
    __real_SDL_Delay(ms);
}

Uint32 __real_SDL_GetTicks();
Uint32 __wrap_SDL_GetTicks() {
    const int set = clock_ms;
    return set >= 0 ? static_cast<Uint32>(set) : __real_SDL_GetTicks();
}
}

namespace {

std::mutex log_mutex;
std::string log_text;

[[gnu::format(printf, 3, 0)]] void note(void* /*context*/, int level, const char* format,
                                        va_list arguments) {
    if (level > AV_LOG_ERROR) return;
    std::array<char, 512> line{};
    std::vsnprintf(line.data(), line.size(), format, arguments);
    const std::lock_guard lock(log_mutex);
    log_text += line.data();
}

double milliseconds_since(std::chrono::steady_clock::time_point start) {
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    return time.count();
}

}  // namespace

LibraryLog::LibraryLog() {
    const std::lock_guard lock(log_mutex);
    log_text.clear();
    av_log_set_callback(note);
}

LibraryLog::~LibraryLog() {
    av_log_set_callback(av_log_default_callback);
}

std::string LibraryLog::text() const {
    const std::lock_guard lock(log_mutex);
    return log_text;
}

std::string clip(const std::string& name) {
    return VYX_TEST_MEDIA "/" + name;
}

void run_ffmpeg(const std::string& arguments) {
    ASSERT_EQ(std::system(("ffmpeg -nostdin -v error -y " + arguments).c_str()), 0) << arguments;
}

std::vector<std::uint8_t> ffmpeg_output(const std::string& arguments) {
    std::vector<std::uint8_t> bytes;
    std::FILE* pipe = popen(("ffmpeg -nostdin -v error " + arguments).c_str(), "r");
    if (!pipe) return bytes;
    std::array<std::uint8_t, 65536> block{};
    while (const std::size_t count = std::fread(block.data(), 1, block.size(), pipe))
        bytes.insert(bytes.end(), block.begin(), block.begin() + static_cast<long>(count));
    EXPECT_EQ(pclose(pipe), 0) << arguments;
    return bytes;
}

RgbPicture pixels(const Thumbnail& thumbnail) {
    const AVFrame* frame = thumbnail.picture;
    if (!frame) return {};
    EXPECT_EQ(frame->linesize[0], frame->width * 3);
    EXPECT_EQ(frame->format, AV_PIX_FMT_RGB24);
    const std::uint8_t* first = frame->data[0];
    return {frame->width, frame->height, {first, first + frame->width * 3 * frame->height}};
}

RgbPicture ffmpeg_picture(const std::string& film, double seconds, int width, int height) {
    const std::string size = std::to_string(width) + ":" + std::to_string(height);
    return {width, height,
            ffmpeg_output("-i '" + film + "' -map 0:v:0 -vf \"select='gte(t," +
                          std::to_string(seconds) + ")',scale=" + size +
                          ":flags=bilinear\" -frames:v 1 -f rawvideo -pix_fmt rgb24 -")};
}

Difference difference(const RgbPicture& a, const RgbPicture& b) {
    const bool comparable = a.width == b.width && a.height == b.height && !a.bytes.empty() &&
                            a.bytes.size() == b.bytes.size();
    if (!comparable) return {};
    Difference found{0, 0.0};
    for (std::size_t i = 0; i < a.bytes.size(); ++i) {
        const int one = std::abs(a.bytes[i] - b.bytes[i]);
        found.largest = std::max(found.largest, one);
        found.mean += one;
    }
    found.mean /= static_cast<double>(a.bytes.size());
    return found;
}

MadeThumbnail::MadeThumbnail(const std::string& path)
    : MadeThumbnail(path, static_cast<int>(thumbnail_patience.count())) {}

MadeThumbnail::MadeThumbnail(const std::string& path, int limit_ms) {
    const auto start = std::chrono::steady_clock::now();
    thumbnail_ = create_thumbnail(path.c_str(), std::chrono::milliseconds(limit_ms));
    milliseconds_ = milliseconds_since(start);
    EXPECT_EQ(thumbnail_.name, path);
    EXPECT_EQ(thumbnail_.texture, nullptr);
    EXPECT_EQ(thumbnail_.last_use, 0U);
}

MadeThumbnail::~MadeThumbnail() {
    ThumbnailDatabase::Delete(thumbnail_);
    EXPECT_EQ(thumbnail_.picture, nullptr);
}

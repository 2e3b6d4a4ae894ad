// SPDX-License-Identifier: MIT
#include "player/input_ahead.h"

#include "platform/threads.h"

#include <sys/stat.h>

#include <mutex>
#include <string>
#include <system_error>
#include <thread>

namespace {

// Guards all of this but the atomics. The thread itself takes no lock: it reads the name and writes
// its results before anybody who joined it looks at them.
std::mutex ahead_mutex;
std::thread opener;
std::string opened_name;
FormatInputPtr opened_input;
bool is_readable = false;

std::atomic<bool> unwanted{false};
// Whose it became. The library keeps the callback for as long as it has the file open.
std::atomic<VideoState*> owner{nullptr};

int is_given_up(void* /*opaque*/) {
    const VideoState* is = owner;
    return unwanted || (is && is->abort_request) ? 1 : 0;
}

bool is_ordinary_file(const char* name) {
    struct stat status {};
    return stat(name, &status) == 0 && S_ISREG(status.st_mode);
}

void open_and_probe() {
    set_thread_role(ThreadRole::demux);  // it does the beginning of that thread's work
    AVFormatContext* context = avformat_alloc_context();
    if (!context) return;
    context->interrupt_callback = {is_given_up, nullptr};
    if (avformat_open_input(&context, opened_name.c_str(),
                            av_find_input_format(opened_name.c_str()), nullptr) < 0) {
        return;
    }
    opened_input.reset(context);
    is_readable = avformat_find_stream_info(context, nullptr) >= 0;
}

}  // namespace

void open_input_ahead(const char* name) {
    if (!is_ordinary_file(name)) return;
    const std::lock_guard lock(ahead_mutex);
    if (opener.joinable()) return;
    opened_name = name;
    is_readable = unwanted = false;
    owner = nullptr;
    try {
        opener = std::thread(open_and_probe);
    } catch (const std::system_error&) {
        opened_name.clear();  // without a thread it is opened later
    }
}

InputAhead take_input_ahead(VideoState* is) {
    const std::lock_guard lock(ahead_mutex);
    if (!opener.joinable() || is->filename != opened_name) return InputAhead::none;
    owner = is;
    opener.join();
    is->format_context = std::move(opened_input);
    return is_readable ? InputAhead::opened : InputAhead::failed;
}

void forget_input_ahead() {
    const std::lock_guard lock(ahead_mutex);
    if (!opener.joinable()) return;
    // What the library says when it is broken off concerns nobody.
    const int level = av_log_get_level();
    av_log_set_level(AV_LOG_QUIET);
    unwanted = true;
    opener.join();
    opened_input.reset();
    av_log_set_level(level);
}

// SPDX-License-Identifier: MIT
// A film on its way from the file to pictures and sound, with the player's own threads; the fuzzer
// stands for the event loop, the display and the sound device. The input is the file; what is done
// with it meanwhile follows from its last bytes.

#include "fuzz/fuzz_input.h"
#include "fuzz/memory_file.h"
#include "gpu/gl_texture.h"
#include "platform/threads.h"
#include "player/audio_output.h"
#include "player/picture_queue.h"
#include "player/stream.h"
#include "player/video_decoder.h"
#include "player/video_refresh.h"

#include <GL/glew.h>

#include <chrono>
#include <mutex>
#include <vector>

namespace {

constexpr int largest_picture = 1024;
constexpr int most_pictures = 24;
constexpr std::chrono::milliseconds patience{1500};

// A sound device that plays when it is asked to.
struct Device {
    std::mutex mutex;
    SDL_AudioSpec spec{};
    bool open = false;
    bool started = false;

    void play() {
        const std::lock_guard lock(mutex);
        if (!started) return;
        // A hundredth of a second: calls wait for packets for as long as half of what they want.
        const int frames = std::clamp(spec.freq / 100, 1, 1024);
        std::vector<Uint8> buffer(static_cast<std::size_t>(frames) * spec.channels * 2);
        audio_callback(spec.userdata, buffer.data(), static_cast<int>(buffer.size()));
        set_thread_role(ThreadRole::unnamed);
    }
};

Device& device() {
    static auto& one = *new Device;
    return one;
}

constexpr AudioDevice quiet_device = {[](SDL_AudioSpec* spec) {
                                          const std::lock_guard lock(device().mutex);
                                          device().spec = *spec;
                                          device().open = true;
                                          return true;
                                      },
                                      [] {
                                          const std::lock_guard lock(device().mutex);
                                          device().started = true;
                                      },
                                      [] {
                                          const std::lock_guard lock(device().mutex);
                                          device().open = device().started = false;
                                      }};

// Pixel buffers that only have names.
void gen_buffers(GLsizei count, GLuint* names) {
    std::fill_n(names, count, 1U);
}
void delete_buffers(GLsizei, const GLuint*) {}
void bind_buffer(GLenum, GLuint) {}
void buffer_data(GLenum, GLsizeiptr, const void*, GLenum) {}

// Takes a picture out of the queue the way the display does: into a buffer of its very size.
void take_picture(VideoState* is) {
    VideoPicture& pic = is->pictures[static_cast<std::size_t>(is->picture_queue_rindex)];
    require(pic.ready && pic.width > 0 && pic.height > 0, "a picture");
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(pic.width) * 3 *
                                     static_cast<std::size_t>(pic.height));
    for (const BufferForm form : {BufferForm::rgb, BufferForm::packed, BufferForm::interleaved}) {
        if (form == BufferForm::rgb || pic.yuv_direct) {
            fill_picture(is, pic, pixels.data(), form);
        }
    }
    release_picture(is);
}

class Playing {
  public:
    Playing(const std::string& path, FuzzInput wishes)
        : wishes_(wishes), is_(stream_open(path.c_str(), "fuzz", nullptr, {})) {}
    ~Playing() { stream_close(is_); }
    Playing(const Playing&) = delete;
    Playing& operator=(const Playing&) = delete;

    void run() {
        const auto end = std::chrono::steady_clock::now() + patience;
        while (is_ && !over_ && std::chrono::steady_clock::now() < end) {
            handle_events();
            if (over_) break;
            device().play();
            if (!take_pictures()) SDL_Delay(1);
        }
    }

  private:
    void handle_events() {
        SDL_Event event;
        while (SDL_PollEvent(&event)) {
            if (event.user.data1 != is_) continue;
            if (event.type == event_alloc_picture) alloc_picture(is_);
            over_ = over_ || event.type == event_failed || event.type == event_end_of_stream;
        }
    }

    bool take_pictures() {
        bool any = false;
        while (has_picture()) {
            take_picture(is_);
            any = true;
            over_ = over_ || ++pictures_ == most_pictures;
            if (pictures_ % 4 == 2) wish();
        }
        return any;
    }

    bool has_picture() const {
        const MutexLock lock(is_->picture_queue_mutex);
        return is_->picture_queue_size > 0;
    }

    void wish() {
        switch (wishes_.take<std::uint8_t>() % 6) {
            case 0:
                stream_seek(is_, wishes_.take<std::int16_t>() * std::int64_t{1000}, 0);
                break;
            case 1:
                stream_seek(is_, wishes_.take<std::int64_t>(), -1);
                break;
            case 2:
                is_->seek_exactly = true;
                stream_seek(is_, wishes_.take<std::uint8_t>() * std::int64_t{10000}, 1);
                break;
            case 3:
                stream_ffw(is_);
                break;
            default:
                break;
        }
    }

    FuzzInput wishes_;
    VideoState* is_;
    bool over_ = false;
    int pictures_ = 0;
};

}  // namespace

// The player's threads look at each other's work in steps of up to 100 ms. Here nobody watches.
extern "C" void SDLCALL SDL_Delay(Uint32 /*ms*/) {
    usleep(200);
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    setenv("SDL_VIDEODRIVER", "dummy", 1);
    require(SDL_Init(SDL_INIT_VIDEO | SDL_INIT_NOPARACHUTE) == 0, "a queue of events");
    av_log_set_level(AV_LOG_QUIET);
    __GLEW_ARB_pixel_buffer_object = GL_TRUE;
    __glewGenBuffers = gen_buffers;
    __glewDeleteBuffers = delete_buffers;
    __glewBindBuffer = bind_buffer;
    __glewBufferData = buffer_data;
    texture_size_limit = max_texture_size = largest_picture;
    decoder_threads = 1;
    set_audio_device(&quiet_device);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const MemoryFile file({data, size});
    const std::size_t tail = std::min<std::size_t>(size, 24);
    Playing(file.path(), FuzzInput(data + size - tail, tail)).run();
    return 0;
}

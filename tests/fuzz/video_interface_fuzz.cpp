// SPDX-License-Identifier: MIT
// Calls of the video file interface, in any order, with records of any content. Buffers and records
// are exactly as large as the interface says that they have to be.

#include "fuzz/fuzz_input.h"
#include "vyx/video.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <vector>

namespace {

constexpr std::size_t most_bytes = std::size_t{16} << 20;
constexpr int most_calls = 40;

// Where everything is written. The calls know relative names only.
std::filesystem::path& folder() {
    static auto& path = *new std::filesystem::path;
    return path;
}

void remove_folder() {
    std::filesystem::remove_all(folder());
}

// A record in memory of the size it says it has, but room for that number at least.
template <class Args>
class Record {
  public:
    explicit Record(FuzzInput& input) {
        Args args{};
        const std::span<const std::uint8_t> content = input.bytes(input.take<std::uint8_t>());
        if (!content.empty()) {
            std::memcpy(&args, content.data(), std::min(content.size(), sizeof args));
        }
        args.size = sizeof args;
        if (input.between(0, 15) == 0) args.size = input.take<std::uint16_t>();
        bytes_.resize(std::max<std::size_t>(args.size, sizeof args.size));
        args_ = args;
    }

    Args& fields() { return args_; }

    // Makes the call with the record where it is to lie.
    template <class Call>
    int run(Call call) {
        std::memcpy(bytes_.data(), &args_, std::min(bytes_.size(), sizeof args_));
        const int result = call(reinterpret_cast<Args*>(bytes_.data()));
        const bool whole = args_.size == sizeof args_;
        std::memcpy(&args_, bytes_.data(), std::min(bytes_.size(), sizeof args_));
        if (whole) {
            require(std::memchr(args_.errorMsg, '\0', VYX_TEXT_SIZE) != nullptr, "messages end");
            require((args_.errorMsg[0] == '\0') == (result == 0), "a message means a failure");
        } else {
            require(result == -1, "records of another size are refused");
        }
        return result;
    }

  private:
    Args args_{};
    std::vector<std::uint8_t> bytes_;
};

// A name without folders and without protocols that lead out of here.
void write_name(char (&name)[VYX_TEXT_SIZE], std::string text) {
    std::size_t harmless = 0;
    for (const char* prefix : {"file:", "cam:"})
        if (text.starts_with(prefix)) harmless = std::strlen(prefix);
    for (std::size_t i = harmless; i < text.size(); ++i)
        if (text[i] == '/' || text[i] == ':' || text[i] == '\\') text[i] = '_';
    std::memset(name, 0, sizeof name);
    std::memcpy(name, text.data(), std::min(text.size(), sizeof name));
}

class Session {
  public:
    explicit Session(FuzzInput& input) : input_(input) {}
    ~Session() {
        for (const auto& [handle, size] : open_)
            close_video(handle);
        for (const auto& entry : std::filesystem::directory_iterator("."))
            std::filesystem::remove_all(entry.path());
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void call() {
        switch (input_.between(0, 8)) {
            case 0:
                make_file();
                break;
            case 1:
                open();
                break;
            case 2:
            case 3:
                read();
                break;
            case 4:
                seek();
                break;
            case 5:
                save();
                break;
            case 6:
            case 7:
                write();
                break;
            default:
                close();
        }
    }

  private:
    struct Size {
        std::int32_t width, height, bytes;
    };

    void make_file() {
        const std::span<const std::uint8_t> content = input_.bytes(input_.take<std::uint16_t>());
        std::ofstream out("film", std::ios::binary);
        out.write(reinterpret_cast<const char*>(content.data()),
                  static_cast<std::streamsize>(content.size()));
    }

    void open() {
        Record<VYX_OpenVideoArgs> record(input_);
        if (input_.between(0, 3)) {
            write_name(record.fields().videoFileName, "film");
        } else {
            write_name(record.fields().videoFileName, input_.text());
        }
        if (record.run(open_video) != 0) return;
        const VYX_OpenVideoArgs& film = record.fields();
        require(film.frame_width > 0 && film.frame_height > 0 && film.frame_bytes > 0, "a size");
        remember(film.handle, {film.frame_width, film.frame_height, film.frame_bytes});
    }

    void save() {
        Record<VYX_SaveVideoArgs> record(input_);
        VYX_SaveVideoArgs& args = record.fields();
        write_name(args.videoFileName, input_.text());
        if (input_.between(0, 3)) make_savable(args);
        limit(args.width, args.height);
        if (record.run(save_video) != 0) return;
        const int sample = args.bits_per_color == 16 ? 2 : 1;
        remember(args.handle, {args.width, args.height, args.width * args.height * 3 * sample});
    }

    void make_savable(VYX_SaveVideoArgs& args) {
        const std::string codec = input_.text();
        std::memcpy(args.codec_name, codec.data(),
                    std::min(codec.size(), sizeof args.codec_name - 1));
        args.width = input_.between(1, 70);
        args.height = input_.between(1, 70);
        args.frame_rate = input_.between(1, 60);
        args.bits_per_color = input_.between(0, 3) ? 8 : 16;
        args.bit_rate = input_.between(0, 3) ? 100000 : input_.take<std::int32_t>();
        args.group_of_pictures = input_.between(0, 3) ? 4 : input_.take<std::int32_t>();
    }

    void read() {
        Record<VYX_ReadFrameArgs> record(input_);
        VYX_ReadFrameArgs& args = record.fields();
        const Size size = choose(args.handle, args.frame_width, args.frame_height);
        args.bytes_per_pixel = input_.between(0, 15) ? 3 : args.bytes_per_pixel;
        const std::size_t bytes = static_cast<std::size_t>(size.bytes);
        std::vector<std::uint8_t> buffer(bytes <= most_bytes ? bytes : 0);
        args.data = buffer.empty() ? nullptr : buffer.data();
        record.run(read_frame);
    }

    void write() {
        Record<VYX_WriteFrameArgs> record(input_);
        VYX_WriteFrameArgs& args = record.fields();
        const Size size = choose(args.handle, args.frame_width, args.frame_height);
        limit(args.frame_width, args.frame_height);
        args.bytes_per_pixel = input_.between(0, 15) ? 3 : args.bytes_per_pixel;
        const bool positive = args.frame_width > 0 && args.frame_height > 0;
        // The first frame of a film may have any size.
        const std::size_t pixels = positive ? static_cast<std::size_t>(args.frame_width) *
                                                  static_cast<std::size_t>(args.frame_height)
                                            : 0;
        const bool deep = size.bytes > size.width * size.height * 3;
        const std::size_t bytes = pixels * (deep ? 6 : 3);
        std::vector<std::uint8_t> buffer(bytes <= most_bytes ? bytes : 0, std::uint8_t{99});
        args.data = buffer.empty() ? nullptr : buffer.data();
        record.run(write_frame);
    }

    void seek() {
        Record<VYX_SeekFrameArgs> record(input_);
        std::int32_t unused = 0;
        choose(record.fields().handle, unused, unused);
        record.run(seek_frame);
    }

    void close() {
        void* handle = nullptr;
        std::int32_t unused = 0;
        choose(handle, unused, unused);
        close_video(handle);
        open_.erase(handle);
        closed_ = handle;
    }

    // Mostly an open handle, and then mostly with its size.
    Size choose(void*& handle, std::int32_t& width, std::int32_t& height) {
        const int wish = input_.between(0, 15);
        if (wish == 0) handle = closed_;
        if (wish <= 1 || open_.empty()) return {0, 0, 0};
        auto chosen = open_.begin();
        std::advance(chosen, input_.between(0, static_cast<int>(open_.size()) - 1));
        handle = chosen->first;
        if (wish > 3) width = chosen->second.width;
        if (wish > 3) height = chosen->second.height;
        return chosen->second;
    }

    // Not so large that encoders take gigabytes; what no buffer can hold stays.
    static void limit(std::int32_t& width, std::int32_t& height) {
        constexpr std::int64_t small = 128 * 128;
        constexpr std::int64_t impossible = std::int64_t{1} << 30;
        const std::int64_t pixels = std::int64_t{width} * height;
        if (width <= 0 || height <= 0 || pixels <= small || pixels >= impossible) return;
        width = width % 100 + 1;
        height = height % 100 + 1;
    }

    void remember(void* handle, Size size) {
        require(handle != nullptr && !open_.contains(handle), "a new handle");
        open_[handle] = size;
    }

    FuzzInput& input_;
    std::map<void*, Size> open_;
    void* closed_ = nullptr;
};

void list_devices(FuzzInput& input) {
    std::array<char[16], 4> names{};
    std::array<char*, 4> places{};
    for (std::size_t i = 0; i < places.size(); ++i)
        places[i] = names[i];
    int count = input.between(-2, static_cast<int>(places.size()));
    const int room = input.between(-1, 16);
    list_videoinput_devicenames(input.between(0, 3) ? places.data() : nullptr, &count, room);
    require(count >= 0, "a number of devices");
    const int strings = input.between(0, 4);
    auto** list = static_cast<char**>(std::calloc(4, sizeof(char*)));
    for (int i = 0; i < strings; ++i)
        list[i] = strdup("name");
    free_list(list, 4);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    folder() = std::filesystem::temp_directory_path() / "vyx-fuzz-XXXXXX";
    std::string name = folder();
    require(mkdtemp(name.data()) != nullptr, "a folder");
    folder() = name;
    std::filesystem::current_path(name);
    std::atexit(remove_folder);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    Session session(input);
    for (int i = 0; i < most_calls && !input.empty(); ++i)
        session.call();
    list_devices(input);
    return 0;
}

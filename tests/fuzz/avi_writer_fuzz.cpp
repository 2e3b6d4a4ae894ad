// SPDX-License-Identifier: MIT
// Frames that are written as an AVI file, which FFmpeg then reads: size, rate and strides, then
// pixels.

#include "fuzz/fuzz_input.h"
#include "fuzz/memory_file.h"
#include "media/ffmpeg_handles.h"
#include "videoio/avi_writer.h"

#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

struct Film {
    int width;
    int height;
    float rate;
    int pixel_stride;
    int row_stride;
    int frames;

    std::size_t frame_bytes() const {
        const int last_row = width * pixel_stride;
        return static_cast<std::size_t>((height - 1) * row_stride + last_row);
    }
};

Film take_film(FuzzInput& input) {
    Film film{};
    film.width = input.between(1, 80);
    film.height = input.between(1, 60);
    film.rate = input.take<float>();
    film.pixel_stride = input.between(3, 5);
    film.row_stride = film.width * film.pixel_stride + input.between(0, 7);
    film.frames = input.between(0, 5);
    return film;
}

// As it is to lie in the file: rows from the bottom, B, G, R, padded to four bytes.
Bytes stored(const Film& film, const Bytes& frame) {
    Bytes out;
    for (int y = film.height - 1; y >= 0; --y) {
        for (int x = 0; x < film.width; ++x) {
            const auto pixel =
                static_cast<std::size_t>(y * film.row_stride + x * film.pixel_stride);
            for (const std::size_t c : {2U, 1U, 0U})
                out.push_back(frame[pixel + c]);
        }
        while (out.size() % 4 != 0)
            out.push_back(0);
    }
    return out;
}

std::vector<Bytes> write_film(const Film& film, FuzzInput& input, const MemoryFile& file) {
    std::FILE* out = fdopen(dup(file.descriptor()), "wb");
    require(out != nullptr, "a file to write to");
    AviWriter writer(out, film.width, film.height, film.rate);
    std::vector<Bytes> expected;
    for (int i = 0; i < film.frames; ++i) {
        const std::span<const std::uint8_t> pixels = input.bytes(film.frame_bytes());
        Bytes frame(pixels.begin(), pixels.end());
        frame.resize(film.frame_bytes(), static_cast<std::uint8_t>(i));
        writer.AppendFrame(frame.data(), film.width, film.height, film.row_stride,
                           film.pixel_stride);
        expected.push_back(stored(film, frame));
    }
    const std::int64_t size = writer.GetFileSize();
    require(writer.Close(), "closing works");
    require(lseek(file.descriptor(), 0, SEEK_END) == size, "the size is as was told");
    return expected;
}

void read_film(const Film& film, const std::vector<Bytes>& expected, const MemoryFile& file) {
    AVFormatContext* opened = nullptr;
    const int result =
        avformat_open_input(&opened, file.path().c_str(), av_find_input_format("avi"), nullptr);
    const FormatInputPtr container(opened);
    require(result >= 0 && opened->nb_streams == 1, "a film of one stream");
    const AVCodecParameters& video = *opened->streams[0]->codecpar;
    require(video.width == film.width && video.height == film.height, "its size");
    const PacketPtr packet(av_packet_alloc());
    for (const Bytes& frame : expected) {
        require(av_read_frame(opened, packet.get()) >= 0, "every frame comes back");
        require(std::equal(frame.begin(), frame.end(), packet->data, packet->data + packet->size),
                "every frame comes back as it was");
        av_packet_unref(packet.get());
    }
    require(av_read_frame(opened, packet.get()) < 0, "no frame more");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    av_log_set_level(AV_LOG_QUIET);
    FuzzInput input(data, size);
    const Film film = take_film(input);
    const MemoryFile file;
    const std::vector<Bytes> expected = write_film(film, input, file);
    // The callers give whole numbers from 1 on; readers take no rate that is 0 in thousandths.
    if (film.rate >= 1.0F && film.rate <= 1000.0F) read_film(film, expected, file);
    return 0;
}

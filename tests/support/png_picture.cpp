// SPDX-License-Identifier: MIT
#include "support/png_picture.h"

#include "media/ffmpeg_handles.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace {

CodecContextPtr open_codec(const AVCodec* codec, int width, int height) {
    CodecContextPtr context(avcodec_alloc_context3(codec));
    context->width = width;
    context->height = height;
    context->pix_fmt = AV_PIX_FMT_RGB24;
    context->time_base = {1, 1};
    if (avcodec_open2(context.get(), codec, nullptr) < 0) context.reset();
    return context;
}

// Rows of `row_bytes` bytes, from one stride to another.
void copy_rows(std::uint8_t* to, int to_stride, const std::uint8_t* from, int from_stride,
               int row_bytes, int rows) {
    for (int y = 0; y < rows; ++y) {
        std::copy_n(from + std::ptrdiff_t{y} * from_stride, row_bytes,
                    to + std::ptrdiff_t{y} * to_stride);
    }
}

}  // namespace

bool write_png(const std::string& path, const PngPicture& picture) {
    const AVCodec* codec = avcodec_find_encoder(AV_CODEC_ID_PNG);
    const CodecContextPtr context = open_codec(codec, picture.width, picture.height);
    const FramePtr frame(av_frame_alloc());
    const PacketPtr packet(av_packet_alloc());
    if (!context) return false;
    frame->format = AV_PIX_FMT_RGB24;
    frame->width = picture.width;
    frame->height = picture.height;
    if (av_frame_get_buffer(frame.get(), 0) < 0) return false;
    copy_rows(frame->data[0], frame->linesize[0], picture.bytes.data(), picture.width * 3,
              picture.width * 3, picture.height);
    if (avcodec_send_frame(context.get(), frame.get()) < 0) return false;
    if (avcodec_receive_packet(context.get(), packet.get()) < 0) return false;
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(packet->data), packet->size);
    return file.good();
}

PngPicture read_png(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes(std::istreambuf_iterator<char>(file), {});
    const CodecContextPtr context = open_codec(avcodec_find_decoder(AV_CODEC_ID_PNG), 0, 0);
    const FramePtr frame(av_frame_alloc());
    const PacketPtr packet(av_packet_alloc());
    PngPicture picture;
    if (!context || av_new_packet(packet.get(), static_cast<int>(bytes.size())) < 0) return picture;
    std::copy(bytes.begin(), bytes.end(), packet->data);
    if (avcodec_send_packet(context.get(), packet.get()) < 0) return picture;
    // Pictures may come out only when there is nothing more to come.
    avcodec_send_packet(context.get(), nullptr);
    if (avcodec_receive_frame(context.get(), frame.get()) < 0) return picture;
    if (frame->format != AV_PIX_FMT_RGB24) return picture;
    picture.width = frame->width;
    picture.height = frame->height;
    picture.bytes.resize(static_cast<std::size_t>(picture.width) * 3U *
                         static_cast<std::size_t>(picture.height));
    copy_rows(picture.bytes.data(), picture.width * 3, frame->data[0], frame->linesize[0],
              picture.width * 3, picture.height);
    return picture;
}

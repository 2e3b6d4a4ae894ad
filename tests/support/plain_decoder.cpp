// SPDX-License-Identifier: MIT
#include "support/plain_decoder.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/motion_vector.h>
#include <libavutil/video_enc_params.h>
}

#include <cmath>

namespace {

// Asks of every cell which partition covers its middle, the later ones first.
void read_vectors(const AVFrame* frame, PlainPicture& picture, int columns, int rows) {
    picture.vectors.assign(static_cast<std::size_t>(rows),
                           std::vector<MotionVector>(static_cast<std::size_t>(columns)));
    const AVFrameSideData* data = av_frame_get_side_data(frame, AV_FRAME_DATA_MOTION_VECTORS);
    if (!data) return;
    picture.has_vectors = true;
    if (frame->pict_type != AV_PICTURE_TYPE_P) return;
    const auto* all = reinterpret_cast<const AVMotionVector*>(data->data);
    const int count = static_cast<int>(data->size / sizeof(AVMotionVector));
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            for (int i = count - 1; i >= 0; --i) {
                const AVMotionVector& mv = all[i];
                const bool covers = std::abs(column * 8 + 4 - mv.dst_x) * 2 < mv.w &&
                                    std::abs(row * 8 + 4 - mv.dst_y) * 2 < mv.h;
                if (!covers || mv.source >= 0) continue;
                const double scale = mv.motion_scale;
                picture.vectors[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] = {
                    static_cast<int>(std::floor(mv.motion_x / scale)),
                    static_cast<int>(std::floor(mv.motion_y / scale))};
                break;
            }
        }
    }
}

void read_quantisers(const AVFrame* frame, PlainPicture& picture, int columns, int rows,
                     bool halve) {
    picture.quantisers.assign(static_cast<std::size_t>(rows),
                              std::vector<int>(static_cast<std::size_t>(columns), 1));
    const AVFrameSideData* data = av_frame_get_side_data(frame, AV_FRAME_DATA_VIDEO_ENC_PARAMS);
    if (!data) return;
    auto* parameters = reinterpret_cast<AVVideoEncParams*>(data->data);
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            int q = parameters->qp;
            for (unsigned i = 0; i < parameters->nb_blocks; ++i) {
                const AVVideoBlockParams* block = av_video_enc_params_block(parameters, i);
                const int x = column * 8 + 4;
                const int y = row * 8 + 4;
                if (x >= block->src_x && x < block->src_x + block->w && y >= block->src_y &&
                    y < block->src_y + block->h) {
                    q = parameters->qp + block->delta_qp;
                }
            }
            picture.quantisers[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] =
                halve ? q / 2 : q;
        }
    }
}

PlainPicture describe(const AVFrame* frame, AVRational time_base, AVCodecID codec) {
    PlainPicture picture;
    picture.width = frame->width;
    picture.height = frame->height;
    picture.type = av_get_picture_type_char(frame->pict_type);
    picture.dts = frame->pkt_dts == AV_NOPTS_VALUE
                      ? NAN
                      : static_cast<double>(frame->pkt_dts) * av_q2d(time_base);
    const int columns = (frame->width + 15) / 16 * 2;
    const int rows = (frame->height + 15) / 16 * 2;
    read_vectors(frame, picture, columns, rows);
    read_quantisers(frame, picture, columns, rows, codec == AV_CODEC_ID_MPEG4);
    return picture;
}

}  // namespace

std::vector<PlainPicture> decode_plainly(const std::string& path) {
    std::vector<PlainPicture> pictures;
    AVFormatContext* input = nullptr;
    if (avformat_open_input(&input, path.c_str(), nullptr, nullptr) < 0) return pictures;
    avformat_find_stream_info(input, nullptr);
    const AVCodec* codec = nullptr;
    const int index = av_find_best_stream(input, AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
    AVStream* stream = input->streams[index];
    AVCodecContext* decoder = avcodec_alloc_context3(codec);
    avcodec_parameters_to_context(decoder, stream->codecpar);
    decoder->thread_count = 1;
    decoder->flags2 |= AV_CODEC_FLAG2_EXPORT_MVS;
    decoder->export_side_data |= AV_CODEC_EXPORT_DATA_VIDEO_ENC_PARAMS;
    avcodec_open2(decoder, codec, nullptr);
    AVPacket* packet = av_packet_alloc();
    AVFrame* frame = av_frame_alloc();
    for (bool more = true; more;) {
        more = av_read_frame(input, packet) >= 0;
        if (more && packet->stream_index != index) {
            av_packet_unref(packet);
            continue;
        }
        avcodec_send_packet(decoder, more ? packet : nullptr);
        av_packet_unref(packet);
        while (avcodec_receive_frame(decoder, frame) >= 0) {
            pictures.push_back(describe(frame, stream->time_base, codec->id));
            const std::size_t count = pictures.size();
            const bool told = av_frame_get_side_data(frame, AV_FRAME_DATA_VIDEO_ENC_PARAMS);
            // The last picture of an MPEG-1 or MPEG-2 film comes without.
            if (!told && count > 1) pictures[count - 1].quantisers = pictures[count - 2].quantisers;
        }
    }
    av_frame_free(&frame);
    av_packet_free(&packet);
    avcodec_free_context(&decoder);
    avformat_close_input(&input);
    return pictures;
}

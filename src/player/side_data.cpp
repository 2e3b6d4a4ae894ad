// SPDX-License-Identifier: MIT
#include "player/side_data.h"

#include "platform/threads.h"

extern "C" {
#include <libavutil/motion_vector.h>
#include <libavutil/video_enc_params.h>
}

#include <algorithm>
#include <bit>
#include <cstring>
#include <span>

namespace {

constexpr int cell = 8;  // pixels
constexpr int largest_quantiser = 127;

// A half-open run of cells along one axis.
struct Cells {
    int first;
    int last;
};

// The cells that [start, start + length) touches, of `count`. Never more than there are.
Cells covered_cells(std::int64_t start, std::int64_t length, std::int64_t count) {
    const std::int64_t first = std::clamp<std::int64_t>(start, 0, count * cell) / cell;
    const std::int64_t end = std::clamp<std::int64_t>(start + length, 0, count * cell);
    return {static_cast<int>(first), static_cast<int>((end + cell - 1) / cell)};
}

template <class T, class V>
void fill_cells(Grid<T>& grid, Cells across, Cells down, V value) {
    if (across.first >= across.last) return;
    for (int r = down.first; r < down.last; ++r) {
        std::fill(grid[r] + across.first, grid[r] + across.last, static_cast<T>(value));
    }
}

void write_vector(VideoPicture* slot, const AVMotionVector& mv) {
    // dst is the middle of the partition. Positions come from the stream: they may lie outside.
    const Cells across = covered_cells(mv.dst_x - mv.w / 2, mv.w, slot->grid_width);
    const Cells down = covered_cells(mv.dst_y - mv.h / 2, mv.h, slot->grid_height);
    const int shift =
        mv.motion_scale > 1 ? static_cast<int>(std::bit_width(unsigned(mv.motion_scale))) - 1 : 0;
    fill_cells(slot->motion_vectors, across, down,
               MotionVector{mv.motion_x >> shift, mv.motion_y >> shift});
}

std::span<const AVMotionVector> vectors_of(const AVFrame* frame) {
    const AVFrameSideData* data = av_frame_get_side_data(frame, AV_FRAME_DATA_MOTION_VECTORS);
    if (!data) return {};
    return {reinterpret_cast<const AVMotionVector*>(data->data),
            data->size / sizeof(AVMotionVector)};
}

// The decoders of MPEG-4 and its relatives report twice the value that the stream's table holds.
bool reports_doubled_quantiser(AVCodecID codec) {
    return exports_motion_vectors(codec) && codec != AV_CODEC_ID_H264 &&
           codec != AV_CODEC_ID_MPEG1VIDEO && codec != AV_CODEC_ID_MPEG2VIDEO;
}

std::uint8_t quantiser(std::int64_t q, AVCodecID codec) {
    if (reports_doubled_quantiser(codec)) q /= 2;
    return static_cast<std::uint8_t>(std::clamp<std::int64_t>(q, 0, largest_quantiser));
}

// Whether the blocks that a record tells of lie in its memory.
bool is_whole(const AVFrameSideData& data) {
    if (data.size < sizeof(AVVideoEncParams)) return false;
    const auto* parameters = reinterpret_cast<const AVVideoEncParams*>(data.data);
    if (parameters->nb_blocks == 0) return true;
    const std::size_t offset = parameters->blocks_offset;
    const std::size_t size = parameters->block_size;
    return size >= sizeof(AVVideoBlockParams) && size % alignof(AVVideoBlockParams) == 0 &&
           offset % alignof(AVVideoBlockParams) == 0 && offset <= data.size &&
           parameters->nb_blocks <= (data.size - offset) / size;
}

// The parameters of a picture, where they are on a scale that means something to the passes.
AVVideoEncParams* parameters_of(const AVFrame* frame) {
    const AVFrameSideData* data = av_frame_get_side_data(frame, AV_FRAME_DATA_VIDEO_ENC_PARAMS);
    if (!data || !is_whole(*data)) return nullptr;
    auto* parameters = reinterpret_cast<AVVideoEncParams*>(data->data);
    int type = 0;  // of another version of the library it may be none that is known here
    std::memcpy(&type, &parameters->type, sizeof type);
    const bool known = type == AV_VIDEO_ENC_PARAMS_MPEG2 || type == AV_VIDEO_ENC_PARAMS_H264;
    return known ? parameters : nullptr;
}

}  // namespace

bool exports_motion_vectors(AVCodecID codec) {
    switch (codec) {
        case AV_CODEC_ID_H264:
        case AV_CODEC_ID_MPEG1VIDEO:
        case AV_CODEC_ID_MPEG2VIDEO:
        case AV_CODEC_ID_MPEG4:
        case AV_CODEC_ID_H263:
        case AV_CODEC_ID_H263P:
        case AV_CODEC_ID_H263I:
        case AV_CODEC_ID_FLV1:
        case AV_CODEC_ID_MSMPEG4V1:
        case AV_CODEC_ID_MSMPEG4V2:
        case AV_CODEC_ID_MSMPEG4V3:
        case AV_CODEC_ID_WMV1:
        case AV_CODEC_ID_WMV2:
        case AV_CODEC_ID_RV10:
        case AV_CODEC_ID_RV20:
            return true;
        default:
            return false;
    }
}

bool vectors_allow_frame_threads(AVCodecID codec) {
    return !exports_motion_vectors(codec);
}

void read_motion_vectors(VideoPicture* slot, const AVFrame* frame, AVCodecID codec) {
    assert_thread(ThreadRole::video);
    slot->block_width = slot->block_height = cell;
    slot->grid_width = 2 * ((frame->width + 15) / 16);
    slot->grid_height = 2 * ((frame->height + 15) / 16);
    const std::span<const AVMotionVector> vectors = vectors_of(frame);
    if (!exports_motion_vectors(codec) && vectors.empty()) {
        slot->motion_vectors.clear();
        return;
    }
    slot->motion_vectors.allocate(slot->grid_height + 1, slot->grid_width + 1);
    slot->motion_vectors.fill({});
    if (frame->pict_type != AV_PICTURE_TYPE_P) return;
    for (const AVMotionVector& mv : vectors) {
        if (mv.source < 0) write_vector(slot, mv);
    }
}

void read_quantization_table(VideoPicture* slot, const AVFrame* frame, AVCodecID codec) {
    assert_thread(ThreadRole::video);
    slot->quantization_table.allocate(slot->grid_height, slot->grid_width);
    AVVideoEncParams* parameters = parameters_of(frame);
    slot->quantization_table.fill(parameters ? quantiser(parameters->qp, codec) : 1);
    if (!parameters) return;
    for (unsigned i = 0; i < parameters->nb_blocks; ++i) {
        const AVVideoBlockParams* block = av_video_enc_params_block(parameters, i);
        fill_cells(slot->quantization_table,
                   covered_cells(block->src_x, block->w, slot->grid_width),
                   covered_cells(block->src_y, block->h, slot->grid_height),
                   quantiser(std::int64_t{parameters->qp} + block->delta_qp, codec));
    }
}

void QuantiserReader::read(VideoPicture* slot, const AVFrame* frame, AVCodecID codec) {
    Grid<std::uint8_t>& table = slot->quantization_table;
    read_quantization_table(slot, frame, codec);
    if (parameters_of(frame)) {
        last_ = table;
    } else if (last_.rows() == table.rows() && last_.columns() == table.columns()) {
        table = last_;
    }
}

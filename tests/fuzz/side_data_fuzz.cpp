// SPDX-License-Identifier: MIT
// The grids of motion vectors and quantisers: a picture's size, kind and codec, then both pieces of
// side data as they would lie beside the picture, whole or broken.

#include "fuzz/fuzz_input.h"
#include "player/side_data.h"

extern "C" {
#include <libavutil/motion_vector.h>
#include <libavutil/video_enc_params.h>
}

namespace {

constexpr AVCodecID codecs[] = {AV_CODEC_ID_H264, AV_CODEC_ID_MPEG2VIDEO, AV_CODEC_ID_MPEG4,
                                AV_CODEC_ID_HEVC, AV_CODEC_ID_FLV1,       AV_CODEC_ID_NONE};
constexpr AVPictureType kinds[] = {AV_PICTURE_TYPE_NONE, AV_PICTURE_TYPE_I, AV_PICTURE_TYPE_P,
                                   AV_PICTURE_TYPE_B};

void attach(AVFrame* frame, AVFrameSideDataType type, std::span<const std::uint8_t> content) {
    if (content.empty()) return;
    AVFrameSideData* data = av_frame_new_side_data(frame, type, content.size());
    require(data != nullptr, "memory");
    std::memcpy(data->data, content.data(), content.size());
}

// What decoders attach: a record made by the library, with blocks of any content.
void attach_parameters(AVFrame* frame, FuzzInput& input) {
    constexpr AVVideoEncParamsType types[] = {AV_VIDEO_ENC_PARAMS_H264, AV_VIDEO_ENC_PARAMS_MPEG2,
                                              AV_VIDEO_ENC_PARAMS_VP9};
    const auto count = static_cast<unsigned>(input.between(0, 40));
    AVVideoEncParams* made =
        av_video_enc_params_create_side_data(frame, types[input.between(0, 2)], count);
    require(made != nullptr, "memory");
    made->qp = input.take<std::int32_t>();
    for (unsigned i = 0; i < count; ++i)
        *av_video_enc_params_block(made, i) = input.take<AVVideoBlockParams>();
}

void check(const VideoPicture& slot, const AVFrame& frame) {
    require(slot.grid_width == 2 * ((frame.width + 15) / 16), "columns");
    require(slot.grid_height == 2 * ((frame.height + 15) / 16), "rows");
    const Grid<MotionVector>& vectors = slot.motion_vectors;
    require(vectors.empty() || (vectors.rows() == slot.grid_height + 1 &&
                                vectors.columns() == slot.grid_width + 1),
            "the grid of vectors has a row and a column more");
    const Grid<std::uint8_t>& table = slot.quantization_table;
    require(table.rows() == slot.grid_height && table.columns() == slot.grid_width, "quantisers");
    for (int row = 0; row < table.rows(); ++row) {
        require(std::all_of(table[row], table[row] + table.columns(),
                            [](int quantiser) { return quantiser <= 127; }),
                "quantisers from 0 to 127");
    }
}

void read_picture(FuzzInput& input, VideoPicture& slot, QuantiserReader& quantisers) {
    const FramePtr frame(av_frame_alloc());
    frame->width = input.between(1, 400);
    frame->height = input.between(1, 300);
    frame->pict_type = kinds[input.between(0, 3)];
    const AVCodecID codec = codecs[input.between(0, 5)];
    attach(frame.get(), AV_FRAME_DATA_MOTION_VECTORS,
           input.bytes(static_cast<std::size_t>(input.between(0, 20 * sizeof(AVMotionVector)))));
    if (input.between(0, 1) == 1) {
        attach_parameters(frame.get(), input);
    } else {
        attach(frame.get(), AV_FRAME_DATA_VIDEO_ENC_PARAMS,
               input.bytes(static_cast<std::size_t>(input.between(0, 200))));
    }
    read_motion_vectors(&slot, frame.get(), codec);
    quantisers.read(&slot, frame.get(), codec);
    check(slot, *frame);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    VideoPicture slot;
    QuantiserReader quantisers;
    for (int picture = 0; picture < 6 && !input.empty(); ++picture)
        read_picture(input, slot, quantisers);
    return 0;
}

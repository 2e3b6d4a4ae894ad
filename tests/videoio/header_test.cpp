// SPDX-License-Identifier: MIT
#include "vyx/video.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <type_traits>

extern "C" int c99_call_without_records(void);

namespace {

static_assert(std::is_trivial_v<VYX_OpenVideoArgs>);
static_assert(std::is_standard_layout_v<VYX_SaveVideoArgs>);

TEST(VideoHeader, NullRecordsAreRefused) {
    EXPECT_EQ(c99_call_without_records(), 6);
}

// A field of a record lies where callers of other languages write it.
template <class Record, class Field>
void expect_at(Field Record::*field, std::size_t offset, const char* name) {
    Record record{};
    const auto* start = reinterpret_cast<const char*>(&record);
    const auto* place = reinterpret_cast<const char*>(&(record.*field));
    EXPECT_EQ(static_cast<std::size_t>(place - start), offset) << name;
}

TEST(VideoHeader, EveryFieldOfTheRecords) {
    using Open = VYX_OpenVideoArgs;
    expect_at(&Open::size, 0, "size");
    expect_at(&Open::videoFileName, 4, "videoFileName");
    expect_at(&Open::errorMsg, 516, "errorMsg");
    expect_at(&Open::handle, 1032, "handle");
    expect_at(&Open::cam_input, 1040, "cam_input");
    expect_at(&Open::frame_width, 1044, "frame_width");
    expect_at(&Open::frame_height, 1048, "frame_height");
    expect_at(&Open::frame_bytes, 1052, "frame_bytes");
    expect_at(&Open::bit_rate, 1056, "bit_rate");
    expect_at(&Open::duration_sec, 1064, "duration_sec");
    expect_at(&Open::frame_rate, 1072, "frame_rate");
    expect_at(&Open::video_bit_rate, 1080, "video_bit_rate");
    expect_at(&Open::pixel_aspect_ratio, 1088, "pixel_aspect_ratio");
    expect_at(&Open::codec_name, 1096, "codec_name");
    expect_at(&Open::frame_count, 1608, "frame_count");
    expect_at(&Open::bits_per_color, 1612, "bits_per_color");
    using Save = VYX_SaveVideoArgs;
    expect_at(&Save::videoFileName, 4, "videoFileName");
    expect_at(&Save::errorMsg, 516, "errorMsg");
    expect_at(&Save::handle, 1032, "handle");
    expect_at(&Save::codec_name, 1040, "codec_name");
    expect_at(&Save::width, 1072, "width");
    expect_at(&Save::height, 1076, "height");
    expect_at(&Save::bit_rate, 1080, "bit_rate");
    expect_at(&Save::group_of_pictures, 1084, "group_of_pictures");
    expect_at(&Save::frame_rate, 1088, "frame_rate");
    expect_at(&Save::bits_per_color, 1092, "bits_per_color");
}

TEST(VideoHeader, EveryFieldOfTheRecordsOfFrames) {
    using Read = VYX_ReadFrameArgs;
    expect_at(&Read::handle, 8, "handle");
    expect_at(&Read::key_frame_only, 16, "key_frame_only");
    expect_at(&Read::frame_height, 20, "frame_height");
    expect_at(&Read::frame_width, 24, "frame_width");
    expect_at(&Read::bytes_per_pixel, 28, "bytes_per_pixel");
    expect_at(&Read::data, 32, "data");
    expect_at(&Read::frame_time, 40, "frame_time");
    expect_at(&Read::errorMsg, 48, "errorMsg");
    using Seek = VYX_SeekFrameArgs;
    expect_at(&Seek::handle, 8, "handle");
    expect_at(&Seek::seek_time, 16, "seek_time");
    expect_at(&Seek::errorMsg, 24, "errorMsg");
    using Write = VYX_WriteFrameArgs;
    expect_at(&Write::handle, 8, "handle");
    expect_at(&Write::frame_height, 16, "frame_height");
    expect_at(&Write::frame_width, 20, "frame_width");
    expect_at(&Write::bytes_per_pixel, 24, "bytes_per_pixel");
    expect_at(&Write::data, 32, "data");
    expect_at(&Write::frame_time, 40, "frame_time");
    expect_at(&Write::errorMsg, 48, "errorMsg");
}

}  // namespace

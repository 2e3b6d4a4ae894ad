// SPDX-License-Identifier: MIT
#include "videoio/avi_writer.h"

#include "videoio/bgr_rows.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

constexpr std::uint32_t has_index = 16;
constexpr std::uint32_t key_frame = 16;
constexpr std::uint32_t main_header_bytes = 56;
constexpr std::uint32_t stream_header_bytes = 56;
constexpr std::uint32_t format_bytes = 40;
constexpr std::uint32_t chunk_header_bytes = 8;
constexpr std::uint32_t list_header_bytes = 12;
constexpr std::uint32_t index_entry_bytes = 16;
constexpr std::uint32_t header_bytes = 4 * list_header_bytes + 3 * chunk_header_bytes +
                                       main_header_bytes + stream_header_bytes + format_bytes;
constexpr std::uint32_t buffer_reserve = 1024;
constexpr std::uint32_t rate_scale = 1000;
constexpr std::uint32_t dots_per_metre = 2952;  // 75 per inch
// Rows are converted in pieces that stay in the processor's cache until they are written.
constexpr std::size_t piece_bytes = std::size_t{128} * 1024;

// What a 32-bit signed field holds of a number.
std::uint32_t clamped_field(float value) {
    constexpr auto most = std::numeric_limits<std::int32_t>::max();
    if (!(value > 0.0F)) return 0;
    if (value >= static_cast<float>(most)) return most;
    return static_cast<std::uint32_t>(value);
}

}  // namespace

AviWriter::AviWriter(FILE* file, int width, int height, float fps)
    : file_(file), width_(width), height_(height), fps_(fps) {
    PushHeader("AVI ");
    WriteHeaderList();
    PushList("movi");
    movi_position_ = position();
}

AviWriter::~AviWriter() {
    Close();
}

void AviWriter::AppendFrame(unsigned char* data, int /*width*/, int height, int row_stride,
                            int pixel_stride) {
    if (!file_) return;
    const auto padded = static_cast<std::size_t>(padded_row_bytes(width_));
    const auto piece = static_cast<int>(std::max<std::size_t>(piece_bytes / padded, 1));
    rows_.resize(padded * static_cast<std::size_t>(std::min(piece, height_)));
    PushChunk("00db");
    for (int done = 0; done < height_;) {
        const int count = std::min(piece, height_ - done);
        for (int i = 0; i < count; ++i) {
            const std::ptrdiff_t row = height - 1 - done - i;
            convert_to_bgr(data + row * row_stride, pixel_stride, width_,
                           rows_.data() + padded * static_cast<std::size_t>(i));
        }
        std::fwrite(rows_.data(), 1, padded * static_cast<std::size_t>(count), file_);
        done += count;
    }
    PopChunkWithIndex(key_frame);
    ++frame_count_;
}

bool AviWriter::Close() {
    if (!file_) return true;
    PopChunk();
    WriteIndex();
    PopChunk();
    write_at(total_frames_position_, frame_count_);
    // The count times the rate field, not the count: readers of these files know it so.
    const float length = static_cast<float>(frame_count_) * fps_ * 1000.0F;
    write_at(length_position_, clamped_field(length));
    const bool failed = std::ferror(file_) != 0;
    const bool closed = std::fclose(file_) == 0;
    file_ = nullptr;
    return closed && !failed;
}

std::int64_t AviWriter::GetFileSize() const {
    return header_bytes + chunk_header_bytes + std::int64_t{frame_count_} * GetFrameSize();
}

std::int64_t AviWriter::GetFrameSize() const {
    const std::int64_t picture = std::int64_t{padded_row_bytes(width_)} * height_;
    return chunk_header_bytes + picture + index_entry_bytes;
}

void AviWriter::PushChunk(const char* code) {
    Chunk chunk{};
    std::memcpy(chunk.code, code, sizeof chunk.code);
    write_fourcc(code);
    chunk.size_position = position();
    write_int32(0);
    chunk.data_position = position();
    chunks_.push(chunk);
}

void AviWriter::PopChunk() {
    const std::int64_t end = position();
    const Chunk chunk = chunks_.top();
    chunks_.pop();
    write_at(chunk.size_position, static_cast<std::uint32_t>(end - chunk.data_position));
    fseeko(file_, end, SEEK_SET);
}

void AviWriter::PopChunkWithIndex(std::uint32_t flags) {
    const Chunk& chunk = chunks_.top();
    IndexEntry entry{};
    std::memcpy(entry.code, chunk.code, sizeof entry.code);
    entry.flags = flags;
    // From the code "movi", which stands 4 bytes before the frames, to the chunk's own code.
    entry.offset = static_cast<std::uint32_t>(chunk.data_position - movi_position_ - 4);
    entry.size = static_cast<std::uint32_t>(position() - chunk.data_position);
    index_.push(entry);
    PopChunk();
}

void AviWriter::PushHeader(const char* type) {
    PushChunk("RIFF");
    write_fourcc(type);
}

void AviWriter::PushList(const char* type) {
    PushChunk("LIST");
    write_fourcc(type);
}

void AviWriter::WriteHeaderList() {
    PushList("hdrl");
    WriteMainHeader();
    PushList("strl");
    WriteStreamHeader();
    WriteStreamFormat();
    PopChunk();
    PopChunk();
}

void AviWriter::WriteMainHeader() {
    PushChunk("avih");
    write_int32(clamped_field(1000000.0F / fps_));  // microseconds per frame
    write_int32(0);                                 // most bytes per second
    write_int32(0);                                 // padding
    write_int32(has_index);
    total_frames_position_ = position();
    write_int32(0);
    write_int32(0);  // initial frames
    write_int32(1);  // streams
    write_int32(picture_bytes() + buffer_reserve);
    write_int32(static_cast<std::uint32_t>(width_));
    write_int32(static_cast<std::uint32_t>(height_));
    for (int i = 0; i < 4; ++i)
        write_int32(0);
    PopChunk();
}

void AviWriter::WriteStreamHeader() {
    PushChunk("strh");
    write_fourcc("vids");
    write_fourcc("DIB ");
    write_int32(0);  // flags
    write_int16(1);  // priority
    write_int16(0);  // language
    write_int32(0);  // initial frames
    write_int32(rate_scale);
    write_int32(clamped_field(fps_ * 1000.0F));
    write_int32(0);  // start
    length_position_ = position();
    write_int32(0);
    write_int32(picture_bytes() + buffer_reserve);
    write_int32(10000);  // quality
    write_int32(0);      // size of a sample: frames differ
    write_int16(0);
    write_int16(0);
    write_int16(static_cast<std::uint32_t>(width_ - 1));
    write_int16(static_cast<std::uint32_t>(height_ - 1));
    PopChunk();
}

void AviWriter::WriteStreamFormat() {
    PushChunk("strf");
    write_int32(format_bytes);
    write_int32(static_cast<std::uint32_t>(width_));
    write_int32(static_cast<std::uint32_t>(height_));  // positive: rows from the bottom
    write_int16(1);                                    // planes
    write_int16(24);                                   // bits per pixel
    write_int32(0);                                    // not compressed
    write_int32(picture_bytes());
    write_int32(dots_per_metre);
    write_int32(dots_per_metre);
    write_int32(0);  // colours of the palette
    write_int32(0);  // important ones
    PopChunk();
}

void AviWriter::WriteIndex() {
    PushChunk("idx1");
    for (; !index_.empty(); index_.pop()) {
        const IndexEntry& entry = index_.front();
        write_fourcc(entry.code);
        write_int32(entry.flags);
        write_int32(entry.offset);
        write_int32(entry.size);
    }
    PopChunk();
}

void AviWriter::write_fourcc(const char* code) {
    std::fwrite(code, 1, 4, file_);
}

void AviWriter::write_int32(std::uint32_t value) {
    write_int16(value & 0xFFFFU);
    write_int16(value >> 16);
}

void AviWriter::write_int16(std::uint32_t value) {
    const std::uint8_t bytes[] = {static_cast<std::uint8_t>(value),
                                  static_cast<std::uint8_t>(value >> 8)};
    std::fwrite(bytes, 1, sizeof bytes, file_);
}

void AviWriter::write_at(std::int64_t position, std::uint32_t value) {
    fseeko(file_, position, SEEK_SET);
    write_int32(value);
}

std::int64_t AviWriter::position() const {
    return ftello(file_);
}

std::uint32_t AviWriter::picture_bytes() const {
    return static_cast<std::uint32_t>(width_) * static_cast<std::uint32_t>(height_) * 3;
}

// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <cstdio>
#include <queue>
#include <stack>
#include <vector>

/// Writes uncompressed 24-bit pictures into a RIFF/AVI file: one stream, one key frame per picture,
/// an index at the end.
///
/// Errors of the file are not looked at until it is closed; its `ferror` tells earlier. One thread.
class AviWriter {
  public:
    /// Takes the file, which is open for writing at its start, and writes the headers; when this
    /// throws, for want of memory, the file stays the caller's. `width` and
    /// `height` in pixels, `fps` in frames per second.
    AviWriter(FILE* file, int width, int height, float fps);
    virtual ~AviWriter();
    AviWriter(const AviWriter&) = delete;
    AviWriter& operator=(const AviWriter&) = delete;

    /// Appends one picture of R, G, B bytes, rows from the top. Strides in bytes, from row to row
    /// and from pixel to pixel. `data` has `height` rows of as many pixels as the writer is wide;
    /// `height` must be the writer's, `width` is not looked at.
    void AppendFrame(unsigned char* data, int width, int height, int row_stride, int pixel_stride);

    /// Writes index and counts and closes the file. Returns whether everything has been written.
    /// Harmless when done before: true then.
    bool Close();

    int GetWidth() const { return width_; }
    int GetHeight() const { return height_; }

    /// Bytes of the file if it were closed now.
    std::int64_t GetFileSize() const;
    /// By how many bytes every further frame makes the file larger.
    std::int64_t GetFrameSize() const;

  protected:
    void PushChunk(const char* code);
    void PopChunk();
    void PopChunkWithIndex(std::uint32_t flags);
    void PushHeader(const char* type);
    void PushList(const char* type);
    void WriteHeaderList();
    void WriteMainHeader();
    void WriteStreamHeader();
    void WriteStreamFormat();
    void WriteIndex();

  private:
    struct Chunk {
        char code[4];
        std::int64_t size_position;
        std::int64_t data_position;
    };
    struct IndexEntry {
        char code[4];
        std::uint32_t flags;
        std::uint32_t offset;
        std::uint32_t size;
    };

    void write_fourcc(const char* code);
    void write_int32(std::uint32_t value);
    void write_int16(std::uint32_t value);
    void write_at(std::int64_t position, std::uint32_t value);
    std::int64_t position() const;
    std::uint32_t picture_bytes() const;

    FILE* file_;
    std::int32_t width_;
    std::int32_t height_;
    float fps_;
    std::uint32_t frame_count_ = 0;
    std::stack<Chunk> chunks_;
    std::queue<IndexEntry> index_;
    std::int64_t movi_position_ = 0;
    std::int64_t total_frames_position_ = 0;
    std::int64_t length_position_ = 0;
    std::vector<std::uint8_t> rows_;  ///< converted and not yet written
};

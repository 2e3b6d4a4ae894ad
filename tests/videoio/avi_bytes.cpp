// SPDX-License-Identifier: MIT
#include "videoio/avi_bytes.h"

namespace {

void add(Bytes& out, const std::string& code) {
    out.insert(out.end(), code.begin(), code.end());
}

void add(Bytes& out, const Bytes& more) {
    out.insert(out.end(), more.begin(), more.end());
}

void number(Bytes& out, long value, int bytes = 4) {
    for (int i = 0; i < bytes; ++i)
        out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

Bytes chunk(const std::string& code, const Bytes& data) {
    Bytes out;
    add(out, code);
    number(out, static_cast<long>(data.size()));
    add(out, data);
    return out;
}

Bytes list(const std::string& code, const std::string& type, const std::vector<Bytes>& parts) {
    Bytes data;
    add(data, type);
    for (const Bytes& part : parts)
        add(data, part);
    return chunk(code, data);
}

Bytes main_header(long frames, int width, int height, float fps) {
    Bytes out;
    number(out, static_cast<long>(1000000.0F / fps));
    for (const long value : {0L, 0L, 16L, frames, 0L, 1L})
        number(out, value);
    number(out, long{width} * height * 3 + 1024);
    number(out, width);
    number(out, height);
    for (int i = 0; i < 4; ++i)
        number(out, 0);
    return chunk("avih", out);
}

Bytes stream_header(long frames, int width, int height, float fps) {
    Bytes out;
    add(out, "vidsDIB ");
    number(out, 0);
    number(out, 1, 2);
    number(out, 0, 2);
    number(out, 0);
    number(out, 1000);
    number(out, static_cast<long>(fps * 1000.0F));
    number(out, 0);
    number(out, static_cast<long>(static_cast<float>(frames) * fps * 1000.0F));
    number(out, long{width} * height * 3 + 1024);
    number(out, 10000);
    number(out, 0);
    for (const long value : {0L, 0L, width - 1L, height - 1L})
        number(out, value, 2);
    return chunk("strh", out);
}

Bytes stream_format(int width, int height) {
    Bytes out;
    number(out, 40);
    number(out, width);
    number(out, height);
    number(out, 1, 2);
    number(out, 24, 2);
    number(out, 0);
    number(out, long{width} * height * 3);
    for (const long value : {2952L, 2952L, 0L, 0L})
        number(out, value);
    return chunk("strf", out);
}

Bytes picture(const Bytes& frame, int width, int height) {
    Bytes out;
    for (int y = height - 1; y >= 0; --y) {
        for (int x = 0; x < width; ++x) {
            const auto pixel = static_cast<std::size_t>((y * width + x) * 3);
            for (const std::size_t c : {2U, 1U, 0U})
                out.push_back(frame[pixel + c]);
        }
        while (out.size() % 4 != 0)
            out.push_back(0);
    }
    return chunk("00db", out);
}

}  // namespace

Bytes avi_bytes(const std::vector<Bytes>& frames, int width, int height, float fps) {
    const auto count = static_cast<long>(frames.size());
    std::vector<Bytes> pictures;
    Bytes index;
    long offset = 4;
    for (const Bytes& frame : frames) {
        pictures.push_back(picture(frame, width, height));
        const auto bytes = static_cast<long>(pictures.back().size());
        add(index, "00db");
        number(index, 16);
        number(index, offset);
        number(index, bytes - 8);
        offset += bytes;
    }
    const Bytes stream = list(
        "LIST", "strl", {stream_header(count, width, height, fps), stream_format(width, height)});
    return list("RIFF", "AVI ",
                {list("LIST", "hdrl", {main_header(count, width, height, fps), stream}),
                 list("LIST", "movi", pictures), chunk("idx1", index)});
}

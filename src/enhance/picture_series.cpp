// SPDX-License-Identifier: MIT
#include "enhance/picture_series.h"

#include "enhance/enhance_error.h"
#include "enhance/output_file.h"

#include <cctype>
#include <cstdio>
#include <cstring>

namespace {

// A pattern cut at its number.
struct Pattern {
    bool valid = false;
    std::string before;
    std::string after;
    int digits = 0;
};

Pattern cut(const std::string& text) {
    Pattern pattern;
    std::string* part = &pattern.before;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            *part += text[i];
            continue;
        }
        if (text.compare(i, 2, "%%") == 0) {
            *part += '%';
            ++i;
            continue;
        }
        std::size_t end = i + 1;
        while (end < text.size() && std::isdigit(static_cast<unsigned char>(text[end])))
            ++end;
        const bool known = end < text.size() && text[end] == 'd' && end - i <= 3 &&
                           (end == i + 1 || text[i + 1] == '0') && part == &pattern.before;
        if (!known) return {};
        pattern.digits = std::atoi(text.substr(i + 1, end - i - 1).c_str());
        part = &pattern.after;
        i = end;
    }
    pattern.valid = part == &pattern.after;
    return pattern;
}

void write_file(const std::string& path, const AVPacket& packet) {
    OutputFile file(path);
    std::FILE* out = std::fopen(file.working_path().c_str(), "wb");
    const auto size = static_cast<std::size_t>(packet.size);
    bool ok = out && std::fwrite(packet.data, 1, size, out) == size;
    if (out) ok = std::fclose(out) == 0 && ok;
    if (!ok) throw EnhanceError("cannot write '" + path + "'");
    file.complete();
}

}  // namespace

bool is_picture_pattern(const std::string& path) {
    return path.ends_with(".png") && cut(path).valid;
}

std::string picture_name(const std::string& pattern, long number) {
    const Pattern parts = cut(pattern);
    std::string digits = std::to_string(number);
    const auto wanted = static_cast<std::size_t>(parts.digits);
    if (digits.size() < wanted) digits.insert(0, wanted - digits.size(), '0');
    return parts.before + digits + parts.after;
}

PictureSeries::PictureSeries(std::string pattern)
    : pattern_(std::move(pattern)), frame_(av_frame_alloc()), packet_(av_packet_alloc()) {}

void PictureSeries::write(const RgbPicture& picture, double /*seconds*/) {
    const std::string path = picture_name(pattern_, ++number_);
    const AVCodec* codec = avcodec_find_encoder(AV_CODEC_ID_PNG);
    if (!codec) throw EnhanceError("the codec library cannot write PNG files");
    // A picture is a stream of its own: they may differ in size.
    encoder_.reset(avcodec_alloc_context3(codec));
    encoder_->width = picture.width;
    encoder_->height = picture.height;
    encoder_->pix_fmt = AV_PIX_FMT_RGB24;
    encoder_->time_base = {1, 25};
    encoder_->compression_level = 4;
    frame_->width = picture.width;
    frame_->height = picture.height;
    frame_->format = AV_PIX_FMT_RGB24;
    // The encoder only reads.
    frame_->data[0] = const_cast<std::uint8_t*>(picture.bytes.data());
    frame_->linesize[0] = static_cast<int>(picture.row_bytes());
    const bool ok = avcodec_open2(encoder_.get(), codec, nullptr) >= 0 &&
                    avcodec_send_frame(encoder_.get(), frame_.get()) >= 0 &&
                    avcodec_receive_packet(encoder_.get(), packet_.get()) >= 0;
    if (!ok) throw EnhanceError("cannot make '" + path + "' of the picture");
    write_file(path, *packet_);
    av_packet_unref(packet_.get());
}

// SPDX-License-Identifier: MIT
#include "media/thumbnail_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace {

// What is read at once. A key picture of a film in high resolution takes one or two of these.
constexpr int buffer_size = 1 << 16;

bool is_regular(const struct stat& status) {
    return S_ISREG(status.st_mode);
}

// A playlist must not make the reader open other things.
int refuse(AVFormatContext* /*context*/, AVIOContext** /*io*/, const char* /*url*/, int /*flags*/,
           AVDictionary** /*options*/) {
    return AVERROR(EPERM);
}

int is_over(void* patience) {
    return static_cast<const Patience*>(patience)->over() ? 1 : 0;
}

}  // namespace

Patience::Patience(const std::atomic<bool>& abort, std::chrono::milliseconds limit)
    : abort_(&abort), half_(Clock::now() + limit / 2), end_(half_ + (limit - limit / 2)) {}

bool Patience::over() const {
    return *abort_ || Clock::now() >= end_;
}

bool Patience::half_over() const {
    return Clock::now() >= half_;
}

ThumbnailFile::~ThumbnailFile() {
    context_.reset();
    io_.reset();
    if (descriptor_ >= 0) close(descriptor_);
}

bool ThumbnailFile::open(const char* path, const Patience& patience) {
    patience_ = &patience;
    if (!open_descriptor(path) || !make_io()) return false;
    AVFormatContext* context = avformat_alloc_context();
    if (!context) return false;
    context->pb = io_.get();
    context->interrupt_callback = {is_over, const_cast<Patience*>(patience_)};
    context->io_open = refuse;
    // Formats that open their parts without the callback above obey this list: it has no entry that
    // is a protocol.
    context->protocol_whitelist = av_strdup("none");
    if (!context->protocol_whitelist) {
        avformat_free_context(context);
        return false;
    }
    if (avformat_open_input(&context, path, nullptr, nullptr) < 0) return false;
    context_.reset(context);
    return true;
}

bool ThumbnailFile::open_descriptor(const char* path) {
    struct stat status {};
    // Opening some devices does something to them: look first. Another file may have taken the
    // name since: look again.
    if (stat(path, &status) != 0 || !is_regular(status)) return false;
    descriptor_ = ::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor_ < 0 || fstat(descriptor_, &status) != 0 || !is_regular(status)) return false;
    size_ = status.st_size;
    return true;
}

bool ThumbnailFile::make_io() {
    auto* buffer = static_cast<unsigned char*>(av_malloc(buffer_size));
    if (!buffer) return false;
    io_.reset(avio_alloc_context(buffer, buffer_size, 0, this, read, nullptr, seek));
    if (!io_) av_free(buffer);
    return io_ != nullptr;
}

int ThumbnailFile::read(void* self, std::uint8_t* buffer, int size) {
    const auto* file = static_cast<ThumbnailFile*>(self);
    for (;;) {
        if (file->patience_->over()) return AVERROR_EXIT;
        const ssize_t count = ::read(file->descriptor_, buffer, static_cast<std::size_t>(size));
        if (count > 0) return static_cast<int>(count);
        if (count == 0) return AVERROR_EOF;
        if (errno != EINTR) return AVERROR(errno);
    }
}

std::int64_t ThumbnailFile::seek(void* self, std::int64_t offset, int whence) {
    const auto* file = static_cast<ThumbnailFile*>(self);
    if (whence == AVSEEK_SIZE) return file->size_;
    const off_t position = lseek(file->descriptor_, offset, whence & ~AVSEEK_FORCE);
    return position < 0 ? AVERROR(errno) : position;
}

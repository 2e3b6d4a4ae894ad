// SPDX-License-Identifier: MIT
// A film to make a thumbnail of: any bytes.

#include "fuzz/fuzz_input.h"
#include "fuzz/memory_file.h"
#include "media/ffmpeg_handles.h"
#include "media/thumbnail_maker.h"
#include "media/thumbnail_size.h"

extern "C" {
#include <libavutil/log.h>
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    av_log_set_level(AV_LOG_QUIET);
    const MemoryFile file({data, size});
    const Thumbnail made = create_thumbnail(file.path().c_str(), std::chrono::milliseconds(300));
    require(made.name == file.path(), "its name");
    if (!made.picture) return 0;
    const OwnPixelsPtr owner(made.picture);
    const AVFrame& picture = *made.picture;
    require(picture.width >= 1 && picture.width <= thumbnail_width, "its width");
    require(picture.height >= 1 && picture.height <= thumbnail_height, "its height");
    is_flat(picture.data[0], static_cast<std::size_t>(picture.linesize[0] * picture.height));
    return 0;
}

// SPDX-License-Identifier: MIT
// A subtitle file: any bytes.

#include "fuzz/fuzz_input.h"
#include "fuzz/memory_file.h"
#include "media/subtitles.h"

#include <string_view>

namespace {

// What is shown covers the time that was asked for.
void look_up(Subtitles& shown, std::uint64_t t) {
    const Subtitle* cue = shown.get_subtitle(t);
    require(!cue || (cue->start <= t && t <= cue->end), "a subtitle covers its time");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<Subtitle> list = parse_subtitles({reinterpret_cast<const char*>(data), size});
    std::size_t text = 0;
    for (const Subtitle& cue : list)
        text += cue.text.size();
    require(text <= size + list.size(), "texts come from the file");

    const MemoryFile file({data, size});
    Subtitles shown;
    shown.load(file.path());
    for (const Subtitle& cue : list) {
        look_up(shown, cue.start);
        look_up(shown, cue.end);
    }
    for (const Subtitle& cue : list) {
        shown.seek(cue.end);
        look_up(shown, cue.end + 1);
    }
    return 0;
}

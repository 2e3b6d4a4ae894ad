// SPDX-License-Identifier: MIT
#include "support/pass_recorder.h"

#include <GL/glew.h>

#include <cstring>
#include <utility>

// Programs are told by their text. Two folders may have programs of one name.
namespace sr_text {
#include <shaders/spatial_sr.h>
}
namespace denoising_text {
#include <shaders/spatial_denoising.h>
}
namespace temporal_text {
#include <shaders/temporal_upscaling.h>
}
namespace display_text {
#include <shaders/video_display.h>
}

namespace {

PassRecorder* recorder = nullptr;
PFNGLUSEPROGRAMPROC real_use_program = nullptr;

const std::pair<const char*, const char*> programs[] = {
    {sr_text::code_frag_Ia, "spatial_sr/code_frag_Ia"},
    {sr_text::code_frag_Ib, "spatial_sr/code_frag_Ib"},
    {sr_text::code_frag_II, "spatial_sr/code_frag_II"},
    {sr_text::code_frag_III, "spatial_sr/code_frag_III"},
    {sr_text::code_frag_IVa, "spatial_sr/code_frag_IVa"},
    {sr_text::code_frag_Va, "spatial_sr/code_frag_Va"},
    {sr_text::code_frag_VI, "spatial_sr/code_frag_VI"},
    {sr_text::code_frag_VII, "spatial_sr/code_frag_VII"},
    {denoising_text::code_frag_Ib, "spatial_denoising/code_frag_Ib"},
    {denoising_text::code_frag_II, "spatial_denoising/code_frag_II"},
    {denoising_text::code_frag_III, "spatial_denoising/code_frag_III"},
    {denoising_text::code_frag_IVa, "spatial_denoising/code_frag_IVa"},
    {denoising_text::code_frag_IVb, "spatial_denoising/code_frag_IVb"},
    {denoising_text::code_frag_Va, "spatial_denoising/code_frag_Va"},
    {denoising_text::code_frag_Vb, "spatial_denoising/code_frag_Vb"},
    {denoising_text::code_frag_VI, "spatial_denoising/code_frag_VI"},
    {denoising_text::code_frag_VII, "spatial_denoising/code_frag_VII"},
    {denoising_text::hor_filter, "spatial_denoising/hor_filter"},
    {denoising_text::ver_filter, "spatial_denoising/ver_filter"},
    {temporal_text::code_frag_off, "temporal_upscaling/code_frag_off"},
    {temporal_text::code_frag_blend, "temporal_upscaling/code_frag_blend"},
    {temporal_text::code_frag_motioncompensated, "temporal_upscaling/code_frag_motioncompensated"},
    {temporal_text::code_frag_overlapping_blocks_4nb,
     "temporal_upscaling/code_frag_overlapping_blocks_4nb"},
    {temporal_text::code_frag_overlapping_blocks_8nb,
     "temporal_upscaling/code_frag_overlapping_blocks_8nb"},
    {display_text::demo_split, "video_display/demo_split"},
    {display_text::brightness_contrast, "video_display/brightness_contrast"},
    {display_text::shader_YUV420p_to_RGB, "video_display/shader_YUV420p_to_RGB"},
};

std::string name_of(GLuint program) {
    GLuint shader = 0;
    GLsizei count = 0;
    glGetAttachedShaders(program, 1, &count, &shader);
    GLint length = 0;
    glGetShaderiv(shader, GL_SHADER_SOURCE_LENGTH, &length);
    std::string text(static_cast<std::size_t>(length > 0 ? length : 1), '\0');
    glGetShaderSource(shader, length, nullptr, text.data());
    for (const auto& [source, name] : programs) {
        if (std::strcmp(source, text.c_str()) == 0) return name;
    }
    return "unknown";
}

}  // namespace

// The linker sends the calls of all of ours here.
extern "C" {
void __real_glGenTextures(GLsizei count, GLuint* names);
void __wrap_glGenTextures(GLsizei count, GLuint* names);
}

namespace {
long made = 0;
}

void __wrap_glGenTextures(GLsizei count, GLuint* names) {
    made += count;
    __real_glGenTextures(count, names);
}

long textures_made() {
    return made;
}

PassRecorder::PassRecorder() {
    real_use_program = std::exchange(__glewUseProgram, use_program);
    recorder = this;
}

PassRecorder::~PassRecorder() {
    __glewUseProgram = real_use_program;
    recorder = nullptr;
}

void PassRecorder::use_program(unsigned program) {
    if (program != 0) recorder->passes_.push_back(name_of(program));
    real_use_program(program);
}

// SPDX-License-Identifier: MIT
// Loaded before a program, makes calls of it fail: VYX_FAULT="NAME[@CALLER]:FIRST[+COUNT],..."
//
// From the FIRST call of NAME on (1 is the very first) COUNT calls fail, or, without a number, all.
// With a CALLER only those that a file whose name ends with that text, or goes on with ".", makes:
// "vyx" is the player itself, "libSDL2-2.0" a library. The first failure of each is told on
// standard error, so that a test knows that there was one.
//
// NAME is one of those below. "memory" stands for every way in which C++ and C ask for it,
// "av_malloc" for FFmpeg's, "texture" for glTexImage2D and the error that follows, "shader" and
// "program" for compiling and linking, "mapping" for glMapBuffer.

#include <GL/gl.h>
#include <GL/glx.h>
#include <SDL.h>
#include <dlfcn.h>
#include <link.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

constexpr const char* names[] = {
    "memory",        "av_malloc",     "read",         "lseek",         "pthread_create",
    "SDL_PushEvent", "SDL_OpenAudio", "SDL_AddTimer", "texture",       "shader",
    "program",       "mapping",       "SDL_Init",     "SDL_VideoMode",
};

enum Call {
    memory,
    av_memory,
    reading,
    seeking,
    thread,
    push_event,
    open_audio,
    add_timer,
    texture,
    shader,
    program,
    mapping,
    init,
    video_mode,
    call_count
};
static_assert(sizeof names / sizeof names[0] == call_count);

struct Fault {
    std::atomic<bool> wanted = false;
    char caller[64] = "";
    unsigned first = 1;
    unsigned count = 0;
    std::atomic<std::uintptr_t> begin = 0;
    std::atomic<std::uintptr_t> end = 0;
    std::atomic<unsigned> calls = 0;
};
// Before any constructor runs: there are calls already.
constinit Fault faults[call_count];

// Where the wanted caller's file lies in memory.
int note_range(dl_phdr_info* info, std::size_t /*size*/, void* argument) {
    auto& fault = *static_cast<Fault*>(argument);
    const char* path = info->dlpi_name[0] ? info->dlpi_name : program_invocation_name;
    const char* slash = std::strrchr(path, '/');
    const char* file = slash ? slash + 1 : path;
    const std::size_t length = std::strlen(fault.caller);
    const bool same = std::strncmp(file, fault.caller, length) == 0;
    if (!same || (file[length] != '\0' && file[length] != '.')) return 0;
    std::uintptr_t end = 0;
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        const auto& part = info->dlpi_phdr[i];
        if (part.p_type == PT_LOAD) end = info->dlpi_addr + part.p_vaddr + part.p_memsz;
    }
    fault.begin = info->dlpi_addr;
    fault.end = end;
    return 1;
}

bool is_caller(Fault& fault, const void* address) {
    if (fault.caller[0] == '\0') return true;
    // It may be loaded later.
    if (fault.end == 0) dl_iterate_phdr(note_range, &fault);
    const auto place = reinterpret_cast<std::uintptr_t>(address);
    return place >= fault.begin && place < fault.end;
}

void tell(Call call, unsigned number) {
    char text[64];
    const int length = std::snprintf(text, sizeof text, "[fault] %s %u\n", names[call], number);
    if (write(STDERR_FILENO, text, static_cast<std::size_t>(length)) < 0) std::abort();
}

bool fails(Call call, const void* caller) {
    Fault& fault = faults[call];
    if (!fault.wanted || !is_caller(fault, caller)) return false;
    const unsigned number = ++fault.calls;
    if (number < fault.first || number - fault.first >= fault.count) return false;
    if (number == fault.first) tell(call, number);
    return true;
}

// Reads one NAME[@CALLER]:FIRST[+COUNT].
void want(const char* text) {
    char name[64] = "";
    char caller[64] = "";
    unsigned first = 1;
    unsigned count = UINT_MAX;
    if (std::sscanf(text, "%63[^@:]@%63[^:]:%u+%u", name, caller, &first, &count) < 2) {
        std::sscanf(text, "%63[^:]:%u+%u", name, &first, &count);
    }
    for (int i = 0; i < call_count; ++i) {
        if (std::strcmp(names[i], name) != 0) continue;
        std::strcpy(faults[i].caller, caller);
        faults[i].first = first;
        faults[i].count = count;
        faults[i].wanted = true;
        return;
    }
    std::fprintf(stderr, "[fault] there is no '%s'\n", name);
    std::abort();
}

[[gnu::constructor]] void read_wishes() {
    const char* wishes = std::getenv("VYX_FAULT");
    if (!wishes) return;
    char text[512];
    std::snprintf(text, sizeof text, "%s", wishes);
    char* rest = nullptr;
    for (char* one = strtok_r(text, ",", &rest); one; one = strtok_r(nullptr, ",", &rest))
        want(one);
}

// The function of this name that would have been called.
template <class Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

#define NEXT(function) static auto* const function##_next = next<decltype(function)>(#function)
#define CALLER __builtin_return_address(0)

}  // namespace

// Memory. Under a sanitizer, whose allocator has to stay, only what C++ asks for can fail.

void* operator new(std::size_t size) {
    using New = void*(std::size_t);
    static New* const real = next<New>("_Znwm");
    if (fails(memory, CALLER)) throw std::bad_alloc();
    return real(size);
}

#ifndef KEEP_ALLOCATOR

extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* old, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);

static bool runs_out(const void* caller) {
    if (!fails(memory, caller)) return false;
    errno = ENOMEM;
    return true;
}

void* malloc(std::size_t size) noexcept {
    return runs_out(CALLER) ? nullptr : __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) noexcept {
    return runs_out(CALLER) ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* old, std::size_t size) noexcept {
    return size > 0 && runs_out(CALLER) ? nullptr : __libc_realloc(old, size);
}

int posix_memalign(void** out, std::size_t alignment, std::size_t size) noexcept {
    // FFmpeg gets all of its memory here.
    if (runs_out(CALLER) || fails(av_memory, CALLER)) return ENOMEM;
    *out = __libc_memalign(alignment, size);
    return *out ? 0 : ENOMEM;
}

}  // extern "C"

#endif

extern "C" {

ssize_t read(int file, void* buffer, std::size_t count) {
    NEXT(read);
    if (!fails(reading, CALLER)) return read_next(file, buffer, count);
    errno = EIO;
    return -1;
}

off_t lseek(int file, off_t offset, int whence) noexcept {
    NEXT(lseek);
    if (!fails(seeking, CALLER)) return lseek_next(file, offset, whence);
    errno = EIO;
    return -1;
}

off_t lseek64(int file, off_t offset, int whence) noexcept {
    static auto* const real = next<decltype(lseek64)>("lseek64");
    if (!fails(seeking, CALLER)) return real(file, offset, whence);
    errno = EIO;
    return -1;
}

int pthread_create(pthread_t* made, const pthread_attr_t* attributes, void* (*body)(void*),
                   void* argument) noexcept {
    NEXT(pthread_create);
    if (fails(thread, CALLER)) return EAGAIN;
    return pthread_create_next(made, attributes, body, argument);
}

// SDL.

static int refused() {
    SDL_SetError("made-up fault");
    return -1;
}

int SDL_Init(Uint32 flags) {
    NEXT(SDL_Init);
    return fails(init, CALLER) ? refused() : SDL_Init_next(flags);
}

SDL_Surface* SDL_SetVideoMode(int width, int height, int depth, Uint32 flags) {
    NEXT(SDL_SetVideoMode);
    return fails(video_mode, CALLER) ? nullptr : SDL_SetVideoMode_next(width, height, depth, flags);
}

int SDL_PushEvent(SDL_Event* event) {
    NEXT(SDL_PushEvent);
    return fails(push_event, CALLER) ? -1 : SDL_PushEvent_next(event);
}

int SDL_OpenAudio(SDL_AudioSpec* desired, SDL_AudioSpec* obtained) {
    NEXT(SDL_OpenAudio);
    return fails(open_audio, CALLER) ? refused() : SDL_OpenAudio_next(desired, obtained);
}

SDL_TimerID SDL_AddTimer(Uint32 interval, SDL_NewTimerCallback callback, void* argument) {
    NEXT(SDL_AddTimer);
    return fails(add_timer, CALLER) ? nullptr : SDL_AddTimer_next(interval, callback, argument);
}

// OpenGL. What the library links is met by its name; what it asks for, on the way to it.

static GLenum pending_error = GL_NO_ERROR;

GLenum glGetError() {
    NEXT(glGetError);
    const GLenum error = pending_error;
    pending_error = GL_NO_ERROR;
    return error != GL_NO_ERROR ? error : glGetError_next();
}

void glTexImage2D(GLenum target, GLint level, GLint internal_format, GLsizei width, GLsizei height,
                  GLint border, GLenum format, GLenum type, const void* texels) {
    NEXT(glTexImage2D);
    if (fails(texture, CALLER)) {
        pending_error = GL_OUT_OF_MEMORY;
        return;
    }
    glTexImage2D_next(target, level, internal_format, width, height, border, format, type, texels);
}

static PFNGLGETSHADERIVPROC real_get_shader;
static PFNGLGETSHADERINFOLOGPROC real_shader_log;
static PFNGLGETPROGRAMIVPROC real_get_program;
static PFNGLGETPROGRAMINFOLOGPROC real_program_log;
static PFNGLMAPBUFFERPROC real_map;
// A driver may say anything.
static const char made_up_log[] = "a made-up log with %s and %n in it\n";
static std::atomic<bool> shader_failed, program_failed;

static void deny(GLenum status, GLenum name, GLint* value) {
    if (name == status) *value = GL_FALSE;
    if (name == GL_INFO_LOG_LENGTH) *value = sizeof made_up_log;
}

static void copy_log(GLsizei room, GLsizei* length, char* log) {
    std::snprintf(log, static_cast<std::size_t>(room), "%s", made_up_log);
    if (length) *length = static_cast<GLsizei>(std::strlen(log));
}

static void get_shader(GLuint name, GLenum what, GLint* value) {
    if (what == GL_COMPILE_STATUS) shader_failed = fails(shader, CALLER);
    real_get_shader(name, what, value);
    if (shader_failed) deny(GL_COMPILE_STATUS, what, value);
}

static void shader_log(GLuint name, GLsizei room, GLsizei* length, char* log) {
    if (shader_failed) return copy_log(room, length, log);
    real_shader_log(name, room, length, log);
}

static void get_program(GLuint name, GLenum what, GLint* value) {
    if (what == GL_LINK_STATUS) program_failed = fails(program, CALLER);
    real_get_program(name, what, value);
    if (program_failed) deny(GL_LINK_STATUS, what, value);
}

static void program_log(GLuint name, GLsizei room, GLsizei* length, char* log) {
    if (program_failed) return copy_log(room, length, log);
    real_program_log(name, room, length, log);
}

static void* map_buffer(GLenum target, GLenum access) {
    if (!fails(mapping, CALLER)) return real_map(target, access);
    pending_error = GL_OUT_OF_MEMORY;
    return nullptr;
}

using AnyFunction = void (*)();

}  // extern "C": templates have no such linkage

template <class Function>
static AnyFunction replaced(AnyFunction found, Function& real, Function ours) {
    if (!found) return found;
    real = reinterpret_cast<Function>(found);
    return reinterpret_cast<AnyFunction>(ours);
}

extern "C" {

static AnyFunction entry(const char* name, AnyFunction found) {
    if (!std::strcmp(name, "glGetShaderiv")) return replaced(found, real_get_shader, get_shader);
    if (!std::strcmp(name, "glGetShaderInfoLog"))
        return replaced(found, real_shader_log, shader_log);
    if (!std::strcmp(name, "glGetProgramiv")) return replaced(found, real_get_program, get_program);
    if (!std::strcmp(name, "glGetProgramInfoLog"))
        return replaced(found, real_program_log, program_log);
    if (!std::strcmp(name, "glMapBuffer")) return replaced(found, real_map, map_buffer);
    return found;
}

__GLXextFuncPtr glXGetProcAddressARB(const GLubyte* name) {
    NEXT(glXGetProcAddressARB);
    return entry(reinterpret_cast<const char*>(name), glXGetProcAddressARB_next(name));
}

AnyFunction glXGetProcAddress(const GLubyte* name) {
    NEXT(glXGetProcAddress);
    return entry(reinterpret_cast<const char*>(name), glXGetProcAddress_next(name));
}

}  // extern "C"

/* SPDX-License-Identifier: MIT */
/* Watches a player from inside. The test names a file by the environment variable GL_WATCH; what is
   counted stands there, as the record below, while the player runs. */

#include <GL/gl.h>
#include <GL/glext.h>
#include <SDL.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <malloc.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

struct Record {
    uint32_t start_errors; /* GL errors until the first picture was shown */
    uint32_t errors;       /* and since then */
    uint32_t swaps;        /* pictures shown */
    uint32_t captions;     /* captions set: one at the start, one per film */
    uint32_t question;     /* the test counts it up to have GL's objects counted */
    uint32_t answer;       /* equals the question once they are */
    uint32_t textures;
    uint32_t lists;
    uint32_t buffers;
    uint32_t framebuffers;
    uint32_t programs;
    uint32_t waits; /* for the driver to finish what it was asked for */
    uint32_t heap;  /* KiB that were allocated and not freed */
};

enum { highest_name = 20000 };

static volatile struct Record* record;

__attribute__((constructor)) static void open_record(void) {
    const char* name = getenv("GL_WATCH");
    const int file = name ? open(name, O_RDWR) : -1;
    if (file < 0) return;
    void* memory = mmap(NULL, sizeof *record, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (memory != MAP_FAILED) record = memory;
    close(file);
}

static void* next(const char* name) {
    void* found = dlsym(RTLD_NEXT, name);
    if (!found) abort();
    return found;
}

/* Extensions are asked for by name; the player has loaded the library. */
static void* gl(const char* name) {
    void* (*find)(const GLubyte*) = (void* (*)(const GLubyte*))next("glXGetProcAddressARB");
    return find((const GLubyte*)name);
}

static void GLAPIENTRY note_message(GLenum source, GLenum type, GLuint id, GLenum severity,
                                    GLsizei length, const GLchar* message, const void* user) {
    (void)source, (void)id, (void)severity, (void)length, (void)user;
    if (type != GL_DEBUG_TYPE_ERROR) return;
    fprintf(stderr, "GL error: %s\n", message);
    if (record->swaps) {
        ++record->errors;
    } else {
        ++record->start_errors;
    }
}

/* The driver tells of every error, also of those whose flag somebody reads and drops. */
static void watch_errors(void) {
    PFNGLDEBUGMESSAGECALLBACKPROC callback =
        (PFNGLDEBUGMESSAGECALLBACKPROC)gl("glDebugMessageCallback");
    if (!callback) return;
    glEnable(GL_DEBUG_OUTPUT);
    glEnable(GL_DEBUG_OUTPUT_SYNCHRONOUS);
    callback(note_message, NULL);
}

static uint32_t count(GLboolean (*exists)(GLuint)) {
    uint32_t found = 0;
    for (GLuint name = 1; name <= highest_name; ++name)
        found += exists(name) == GL_TRUE;
    return found;
}

static void count_objects(void) {
    typedef GLboolean (*Exists)(GLuint);
    record->textures = count(glIsTexture);
    record->lists = count(glIsList);
    record->buffers = count((Exists)gl("glIsBuffer"));
    record->framebuffers = count((Exists)gl("glIsFramebuffer"));
    record->programs = count((Exists)gl("glIsProgram"));
    const struct mallinfo2 memory = mallinfo2();
    record->heap = (uint32_t)((memory.uordblks + memory.hblkhd) / 1024);
    record->answer = record->question;
}

SDL_Surface* SDL_SetVideoMode(int width, int height, int bits, Uint32 flags) {
    static SDL_Surface* (*set)(int, int, int, Uint32);
    if (!set) set = (SDL_Surface * (*)(int, int, int, Uint32)) next("SDL_SetVideoMode");
    SDL_Surface* surface = set(width, height, bits, flags);
    if (record && surface && flags & SDL_OPENGL) watch_errors(); /* the context may be a new one */
    return surface;
}

void SDL_GL_SwapBuffers(void) {
    static void (*swap)(void);
    if (!swap) swap = (void (*)(void))next("SDL_GL_SwapBuffers");
    if (record) {
        /* So that a test can see that errors are noticed. */
        if (record->swaps == 3 && getenv("GL_WATCH_MISTAKE")) glEnable(GL_TRIANGLES);
        if (record->question != record->answer) count_objects();
    }
    swap();
    if (record) ++record->swaps;
}

void glFinish(void) {
    static void (*finish)(void);
    if (!finish) finish = (void (*)(void))next("glFinish");
    finish();
    if (record) ++record->waits;
}

void SDL_WM_SetCaption(const char* title, const char* icon) {
    static void (*set)(const char*, const char*);
    if (!set) set = (void (*)(const char*, const char*))next("SDL_WM_SetCaption");
    set(title, icon);
    if (record) ++record->captions;
}

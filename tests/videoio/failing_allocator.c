/* SPDX-License-Identifier: MIT */
/* Memory that runs out: loaded before a program, it makes allocations fail once the program says
   so.

   fail_allocations(n, whose) makes every n-th one fail from now on, of all threads together; 0 ends
   that. `whose` is 0 for those that libvyxvideo.so asks for, itself or through the C++ library or
   as an object of FFmpeg's, and 1 for every allocation of the process; with 2 it is the library's
   locks that fail, as something else than memory. failed_allocations() tells how many did. With
   OBJECTS_ONLY nothing but objects of FFmpeg's and locks fails. */

#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <link.h>
#include <pthread.h>
#include <stdatomic.h>
#include <stddef.h>
#include <stdint.h>
#include <string.h>

void fail_allocations(unsigned every, int whose);
unsigned failed_allocations(void);

static atomic_uint every_nth, counted, failed;
enum { of_library, of_process, locks_of_library };
static int failing;

/* Where the code of the library and that of the C++ library lie. */
enum { most_ranges = 16 };
static struct {
    uintptr_t start, end;
    int cpp;
} ranges[most_ranges];
static int range_count;

static int note_ranges(struct dl_phdr_info* info, size_t size, void* unused) {
    const int cpp = strstr(info->dlpi_name, "/libstdc++.") != NULL;
    (void)size;
    (void)unused;
    if (!cpp && !strstr(info->dlpi_name, "/libvyxvideo.")) return 0;
    for (int i = 0; i < info->dlpi_phnum && range_count < most_ranges; ++i) {
        if (info->dlpi_phdr[i].p_type != PT_LOAD) continue;
        ranges[range_count].start = info->dlpi_addr + info->dlpi_phdr[i].p_vaddr;
        ranges[range_count].end = ranges[range_count].start + info->dlpi_phdr[i].p_memsz;
        ranges[range_count].cpp = cpp;
        ++range_count;
    }
    return 0;
}

static int is_ours(const void* caller, int cpp_too) {
    for (int i = 0; i < range_count; ++i) {
        const uintptr_t place = (uintptr_t)caller;
        if (place >= ranges[i].start && place < ranges[i].end) return cpp_too || !ranges[i].cpp;
    }
    return 0;
}

void fail_allocations(unsigned every, int whose) {
    if (range_count == 0) dl_iterate_phdr(note_ranges, NULL);
    counted = 0;
    failed = 0;
    failing = whose;
    every_nth = every;
}

unsigned failed_allocations(void) {
    return failed;
}

static int fails_for(const void* caller, int cpp_too) {
    const unsigned every = every_nth;
    if (every == 0 || (failing != of_process && !is_ours(caller, cpp_too))) return 0;
    if (++counted % every != 0) return 0;
    ++failed;
    return 1;
}

static int object_fails(const void* caller) {
    return failing == of_library && fails_for(caller, 0);
}

#ifndef OBJECTS_ONLY

static int runs_out_for(const void* caller) {
    if (failing == locks_of_library || !fails_for(caller, 1)) return 0;
    errno = ENOMEM;
    return 1;
}

#define RUNS_OUT runs_out_for(__builtin_return_address(0))

/* The next library's function of this name, looked up at the first call. */
#define NEXT(type, name, ...)         \
    static type (*next)(__VA_ARGS__); \
    if (!next) next = (type(*)(__VA_ARGS__))dlsym(RTLD_NEXT, #name)

/* Looking up a function can allocate: from here, and never freed. */
static char early[65536];
static size_t early_used;
static int looking_up;

static void* early_memory(size_t bytes) {
    void* memory = early + early_used;
    early_used += (bytes + 63) & ~(size_t)63;
    return early_used <= sizeof early ? memory : NULL;
}

static int is_early(const void* memory) {
    return (const char*)memory >= early && (const char*)memory < early + sizeof early;
}

void* malloc(size_t bytes) {
    if (looking_up) return early_memory(bytes);
    looking_up = 1;
    NEXT(void*, malloc, size_t);
    looking_up = 0;
    if (RUNS_OUT) return NULL;
    return next(bytes);
}

void* calloc(size_t count, size_t bytes) {
    if (looking_up) return early_memory(count * bytes);
    looking_up = 1;
    NEXT(void*, calloc, size_t, size_t);
    looking_up = 0;
    if (RUNS_OUT) return NULL;
    return next(count, bytes);
}

void* realloc(void* memory, size_t bytes) {
    NEXT(void*, realloc, void*, size_t);
    if (is_early(memory)) {
        void* moved = malloc(bytes);
        if (moved) memcpy(moved, memory, bytes);
        return moved;
    }
    if (bytes > 0 && RUNS_OUT) return NULL;
    return next(memory, bytes);
}

int posix_memalign(void** out, size_t alignment, size_t bytes) {
    NEXT(int, posix_memalign, void**, size_t, size_t);
    return RUNS_OUT ? ENOMEM : next(out, alignment, bytes);
}

void free(void* memory) {
    NEXT(void, free, void*);
    if (!is_early(memory)) next(memory);
}

#endif

/* Objects of FFmpeg's that the library asks for. */
#define OBJECT(type, name, parameters, arguments)                      \
    type name parameters;                                              \
    type name parameters {                                             \
        static type(*next) parameters;                                 \
        if (!next) next = (type(*) parameters)dlsym(RTLD_NEXT, #name); \
        if (object_fails(__builtin_return_address(0))) return 0;       \
        return next arguments;                                         \
    }
#define STEP(name, parameters, arguments)                              \
    int name parameters;                                               \
    int name parameters {                                              \
        static int(*next) parameters;                                  \
        if (!next) next = (int(*) parameters)dlsym(RTLD_NEXT, #name);  \
        if (object_fails(__builtin_return_address(0))) return -ENOMEM; \
        return next arguments;                                         \
    }

OBJECT(void*, av_frame_alloc, (void), ())
OBJECT(void*, av_packet_alloc, (void), ())
OBJECT(void*, avcodec_alloc_context3, (const void* codec), (codec))
OBJECT(void*, avformat_new_stream, (void* container, const void* codec), (container, codec))
OBJECT(void*, sws_getContext,
       (int w, int h, int from, int to_w, int to_h, int to, int flags, void* a, void* b,
        const double* c),
       (w, h, from, to_w, to_h, to, flags, a, b, c))
STEP(avformat_open_input, (void** out, const char* name, const void* format, void** options),
     (out, name, format, options))
STEP(avformat_find_stream_info, (void* container, void** options), (container, options))
STEP(avcodec_parameters_to_context, (void* codec, const void* parameters), (codec, parameters))
STEP(avcodec_parameters_from_context, (void* parameters, const void* codec), (parameters, codec))
STEP(avcodec_open2, (void* context, const void* codec, void** options), (context, codec, options))
STEP(av_read_frame, (void* container, void* packet), (container, packet))
STEP(avcodec_send_packet, (void* codec, const void* packet), (codec, packet))
STEP(av_frame_get_buffer, (void* frame, int align), (frame, align))
STEP(av_frame_make_writable, (void* frame), (frame))
STEP(avio_open, (void** out, const char* path, int flags), (out, path, flags))
STEP(avformat_write_header, (void* container, void** options), (container, options))
STEP(avcodec_send_frame, (void* codec, const void* frame), (codec, frame))
STEP(avcodec_receive_packet, (void* codec, void* packet), (codec, packet))
STEP(av_interleaved_write_frame, (void* container, void* packet), (container, packet))
STEP(av_write_trailer, (void* container), (container))

/* The C++ library throws std::system_error then. */
int pthread_mutex_lock(pthread_mutex_t* mutex) {
    static int (*next)(pthread_mutex_t*);
    if (!next) next = (int (*)(pthread_mutex_t*))dlsym(RTLD_NEXT, "pthread_mutex_lock");
    const int ours = failing == locks_of_library;
    return ours && fails_for(__builtin_return_address(0), 0) ? EINVAL : next(mutex);
}

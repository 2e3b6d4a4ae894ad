/* SPDX-License-Identifier: MIT */
/* out_of_memory FOLDER N WHOSE [FILM...]: reads and writes films while every N-th allocation fails,
   of the interface's own (WHOSE is 0) or of the whole process (1), or every N-th lock of the
   interface's (2), and does the same once more without failures. In the whole process only
   uncompressed films are written: FFmpeg 5.1 itself does not survive every failure. Run with the
   allocator that can fail loaded before it.

   Prints each message once as it came up first, and the numbers of failures and frames. Status 0
   when every failure came with a message and everything works afterwards. */

#include "vyx/video.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

void fail_allocations(unsigned every, int whose);
unsigned failed_allocations(void);

static int wrong;

enum { most_lines = 128 };
static char lines[most_lines][VYX_TEXT_SIZE + 32];
static int line_count;

/* What a call said, without line ends, unless it has said so before. */
static void print_new(const char* call, const char* message) {
    char* line = lines[line_count];
    snprintf(line, sizeof lines[0], "%s: %.*s", call, (int)strcspn(message, "\n"), message);
    for (int i = 0; i < line_count; ++i) {
        if (strcmp(lines[i], line) == 0) return;
    }
    if (line_count < most_lines - 1) ++line_count;
    puts(line);
}

/* A result and its message belong together. */
static void check(int result, const char* message, const char* call) {
    if ((result != 0) == (message[0] != '\0') && memchr(message, '\0', VYX_TEXT_SIZE)) {
        if (result != 0) print_new(call, message);
        return;
    }
    printf("%s gave %d with \"%.511s\"\n", call, result, message);
    wrong = 1;
}

static VYX_OpenVideoArgs film;
static VYX_SaveVideoArgs copy;
static VYX_ReadFrameArgs in;
static VYX_WriteFrameArgs out;
static VYX_SeekFrameArgs seek;
static char frame[1920 * 1080 * 6];

static int open_film(const char* path) {
    memset(&film, 0, sizeof film);
    film.size = sizeof film;
    snprintf(film.videoFileName, sizeof film.videoFileName, "%s", path);
    const int result = open_video(&film);
    check(result, film.errorMsg, "open_video");
    if ((result == 0) != (film.handle != NULL)) wrong = 1;
    return result;
}

static int save_copy(const char* folder, const char* name, const char* codec) {
    memset(&copy, 0, sizeof copy);
    copy.size = sizeof copy;
    snprintf(copy.videoFileName, sizeof copy.videoFileName, "%s/%s", folder, name);
    snprintf(copy.codec_name, sizeof copy.codec_name, "%s", codec);
    copy.width = 320;
    copy.height = 180;
    copy.bit_rate = 1000000;
    copy.group_of_pictures = 12;
    copy.frame_rate = 25;
    copy.bits_per_color = 8;
    const int result = save_video(&copy);
    check(result, copy.errorMsg, "save_video");
    if ((result == 0) != (copy.handle != NULL)) wrong = 1;
    return result;
}

/* Frames read, some of them after a seek. */
static int read_frames(void) {
    int frames = 0;
    memset(&in, 0, sizeof in);
    in.size = sizeof in;
    in.handle = film.handle;
    in.frame_width = film.frame_width;
    in.frame_height = film.frame_height;
    in.bytes_per_pixel = 3;
    in.data = frame;
    memset(&seek, 0, sizeof seek);
    seek.size = sizeof seek;
    seek.handle = film.handle;
    seek.seek_time = 0.4;
    for (int i = 0; i < 24; ++i) {
        if (i == 12) check(seek_frame(&seek), seek.errorMsg, "seek_frame");
        const int result = read_frame(&in);
        check(result, in.errorMsg, "read_frame");
        frames += result == 0;
    }
    return frames;
}

/* Frames written. */
static int write_frames(void) {
    int frames = 0;
    memset(&out, 0, sizeof out);
    out.size = sizeof out;
    out.handle = copy.handle;
    out.frame_width = 320;
    out.frame_height = 180;
    out.bytes_per_pixel = 3;
    out.data = frame;
    for (int i = 0; i < 8; ++i) {
        out.frame_time = i * 0.04;
        const int result = write_frame(&out);
        check(result, out.errorMsg, "write_frame");
        frames += result == 0;
    }
    return frames;
}

/* Frames read and written. */
static int work(const char* folder, int outputs_used, int films, char** names) {
    static const char* const outputs[][2] = {
        {"raw.avi", "avi"}, {"mpeg4.avi", "mpeg4"}, {"film.apng", "apng"}};
    int frames = 0;
    int count = 0;
    for (int i = 0; i < films; ++i) {
        if (open_film(names[i]) != 0) continue;
        frames += read_frames();
        close_video(film.handle);
    }
    for (int i = 0; i < outputs_used; ++i) {
        if (save_copy(folder, outputs[i][0], outputs[i][1]) != 0) continue;
        frames += write_frames();
        close_video(copy.handle);
    }
    list_videoinput_devicenames(NULL, &count, 0);
    return frames;
}

int main(int argc, char** argv) {
    if (argc < 4) return 2;
    const int whose = atoi(argv[3]);
    const int outputs_used = whose == 1 ? 1 : 3;
    const int films = argc - 4;
    fail_allocations((unsigned)atoi(argv[2]), whose);
    const int frames = work(argv[1], outputs_used, films, argv + 4);
    const unsigned failures = failed_allocations();
    fail_allocations(0, 0);
    const int afterwards = work(argv[1], outputs_used, films, argv + 4);
    printf("%u failures, %d frames, afterwards %d\n", failures, frames, afterwards);
    return wrong || failures == 0 || afterwards != 24 * films + 8 * outputs_used;
}

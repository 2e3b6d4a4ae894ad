/* SPDX-License-Identifier: MIT */
/* grey_film FILM OUTPUT: writes a film without its colours, into the kind of file that the name of
   OUTPUT tells. Parts of the film that are damaged are left out and told, and the program then ends
   with 1.

   cc -std=c99 grey_film.c $(pkg-config --cflags --libs vyxvideo) -o grey_film */

#include <vyx/video.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* How much each colour counts for the brightness, of 1000. */
enum { red = 299, green = 587, blue = 114, all = 1000 };
/* In a row: nothing will come any more. */
enum { most_failures = 1000 };

static void make_grey(unsigned char* data, size_t pixels) {
    for (size_t i = 0; i < pixels; ++i, data += 3) {
        const unsigned grey = (red * data[0] + green * data[1] + blue * data[2]) / all;
        data[0] = data[1] = data[2] = (unsigned char)grey;
    }
}

static void make_deep_grey(uint16_t* data, size_t pixels) {
    for (size_t i = 0; i < pixels; ++i, data += 3) {
        const unsigned grey = (red * data[0] + green * data[1] + blue * data[2]) / all;
        data[0] = data[1] = data[2] = (uint16_t)grey;
    }
}

/* Whether a path went into its field whole. */
static int copy_path(char* field, const char* path) {
    if (strlen(path) < VYX_TEXT_SIZE) {
        strcpy(field, path);
        return 1;
    }
    fprintf(stderr, "%s: the name is too long\n", path);
    return 0;
}

/* Reads the next frame, past what is damaged; counts that. Returns 0 at the end. */
static int read_next(VYX_ReadFrameArgs* in, long* damaged) {
    for (int failed = 0; failed < most_failures; ++failed) {
        if (read_frame(in) == 0) return 1;
        if (strcmp(in->errorMsg, "read_and_decode failed: End of file\n") == 0) return 0;
        ++*damaged;
    }
    fprintf(stderr, "%s", in->errorMsg);
    return 0;
}

static int open_output(const VYX_OpenVideoArgs* film, const char* path, VYX_SaveVideoArgs* output) {
    output->size = sizeof *output;
    if (!copy_path(output->videoFileName, path)) return -1;
    output->width = film->frame_width;
    output->height = film->frame_height;
    output->bit_rate = 8000000;
    output->group_of_pictures = 50;
    output->frame_rate = film->frame_rate >= 1.0 ? (int)(film->frame_rate + 0.5) : 25;
    output->bits_per_color = film->bits_per_color;
    return save_video(output);
}

/* Returns the number of frames, or -1. */
static long copy_grey(const VYX_OpenVideoArgs* film, void* output, void* frame, long* damaged) {
    VYX_ReadFrameArgs in = {0};
    VYX_WriteFrameArgs out = {0};
    const size_t pixels = (size_t)film->frame_width * (size_t)film->frame_height;
    long frames = 0;
    double start = 0.0;
    in.size = sizeof in;
    in.handle = film->handle;
    in.frame_width = out.frame_width = film->frame_width;
    in.frame_height = out.frame_height = film->frame_height;
    in.bytes_per_pixel = out.bytes_per_pixel = 3;
    in.data = frame;
    out.size = sizeof out;
    out.handle = output;
    out.data = frame;
    for (; read_next(&in, damaged); ++frames) {
        if (film->bits_per_color == 16) {
            make_deep_grey(frame, pixels);
        } else {
            make_grey(frame, pixels);
        }
        if (frames == 0) start = in.frame_time;
        out.frame_time = in.frame_time - start;
        if (write_frame(&out) != 0) {
            fprintf(stderr, "%s", out.errorMsg);
            return -1;
        }
    }
    return frames;
}

int main(int argc, char** argv) {
    VYX_OpenVideoArgs film = {0};
    VYX_SaveVideoArgs output = {0};
    long frames = -1;
    long damaged = 0;
    if (argc != 3) {
        fprintf(stderr, "usage: grey_film FILM OUTPUT\n");
        return 2;
    }
    film.size = sizeof film;
    if (!copy_path(film.videoFileName, argv[1])) return 1;
    if (open_video(&film) != 0) {
        fprintf(stderr, "%s", film.errorMsg);
        return 1;
    }
    if (open_output(&film, argv[2], &output) != 0) {
        if (output.errorMsg[0] != '\0') fprintf(stderr, "%s\n", output.errorMsg);
    } else {
        void* frame = malloc((size_t)film.frame_bytes);
        if (frame) frames = copy_grey(&film, output.handle, frame, &damaged);
        free(frame);
        close_video(output.handle);
    }
    close_video(film.handle);
    if (frames < 0) return 1;
    printf("%ld frames\n", frames);
    if (damaged > 0) {
        fprintf(stderr, "%s is damaged: %ld parts could not be read\n", argv[1], damaged);
        return 1;
    }
    return 0;
}

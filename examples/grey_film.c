/* SPDX-License-Identifier: MIT */
/* grey_film FILM OUTPUT: writes a film without its colours, into the kind of file that the name of
   OUTPUT tells.

   cc -std=c99 grey_film.c $(pkg-config --cflags --libs vyxvideo) -o grey_film */

#include <vyx/video.h>

#include <stdio.h>
#include <stdlib.h>

/* How much each colour counts for the brightness, of 1000. */
enum { red = 299, green = 587, blue = 114, all = 1000 };

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

static int open_output(const VYX_OpenVideoArgs* film, const char* path, VYX_SaveVideoArgs* output) {
    output->size = sizeof *output;
    snprintf(output->videoFileName, sizeof output->videoFileName, "%s", path);
    output->width = film->frame_width;
    output->height = film->frame_height;
    output->bit_rate = 8000000;
    output->group_of_pictures = 50;
    output->frame_rate = film->frame_rate >= 1.0 ? (int)(film->frame_rate + 0.5) : 25;
    output->bits_per_color = film->bits_per_color;
    return save_video(output);
}

/* Returns the number of frames, or -1. */
static long copy_grey(const VYX_OpenVideoArgs* film, void* output, void* frame) {
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
    for (; read_frame(&in) == 0; ++frames) {
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
    if (argc != 3) {
        fprintf(stderr, "usage: grey_film FILM OUTPUT\n");
        return 2;
    }
    film.size = sizeof film;
    snprintf(film.videoFileName, sizeof film.videoFileName, "%s", argv[1]);
    if (open_video(&film) != 0) {
        fprintf(stderr, "%s", film.errorMsg);
        return 1;
    }
    if (open_output(&film, argv[2], &output) != 0) {
        fprintf(stderr, "%s\n", output.errorMsg);
    } else {
        void* frame = malloc((size_t)film.frame_bytes);
        if (frame) frames = copy_grey(&film, output.handle, frame);
        free(frame);
        close_video(output.handle);
    }
    close_video(film.handle);
    if (frames < 0) return 1;
    printf("%ld frames\n", frames);
    return 0;
}

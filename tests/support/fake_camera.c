/* SPDX-License-Identifier: MIT */
/* A camera that is not there: loaded before a program, answers the Video4Linux calls for /dev/video0.

   It delivers 25 planar YUV 4:2:0 pictures per second of any size up to 1280 x 720: grey, with the
   picture's number, modulo 256, as eight fields in the top rows, white for 1, lowest bit left, the way
   the numbered test clips have it. FAKE_CAMERA_PICTURES=N makes it fail after N pictures, as a camera
   does that is pulled out. */

#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <linux/videodev2.h>
#include <pthread.h>
#include <stdarg.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <time.h>
#include <unistd.h>

enum { buffers = 4, max_width = 1280, max_height = 720, rate = 25, fields = 8 };

static int camera = -1; /* a memory file, so that mapping it works by itself */
static unsigned width = 640, height = 480;
static unsigned char* pictures[buffers];
/* Buffers to fill. They come back from whatever thread is done with one. */
static pthread_mutex_t queue_mutex = PTHREAD_MUTEX_INITIALIZER;
static int queue[buffers], queued;
static unsigned number;
static struct timespec due;

static size_t picture_bytes(void) { return (size_t)width * height * 3 / 2; }

/* Whole pages: buffers are mapped one by one. */
static size_t buffer_bytes(void) { return ((size_t)max_width * max_height * 3 / 2 + 4095) & ~(size_t)4095; }

static int open_camera(void) {
    camera = memfd_create("camera", 0);
    if (camera < 0 || ftruncate(camera, (off_t)(buffer_bytes() * buffers)) != 0) return -1;
    for (int i = 0; i < buffers; ++i) {
        pictures[i] = mmap(NULL, buffer_bytes(), PROT_READ | PROT_WRITE, MAP_SHARED, camera,
                           (off_t)(buffer_bytes() * (size_t)i));
        if (pictures[i] == MAP_FAILED) return -1;
    }
    queued = 0;
    number = 0;
    return camera;
}

static int is_camera(const char* path) { return path && strcmp(path, "/dev/video0") == 0; }

typedef int (*open_function)(const char*, int, ...);

static int forward_open(const char* name, const char* path, int flags, mode_t mode) {
    open_function next = (open_function)dlsym(RTLD_NEXT, name);
    return next(path, flags, mode);
}

int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    mode_t mode = (flags & (O_CREAT | O_TMPFILE)) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return is_camera(path) ? open_camera() : forward_open("open", path, flags, mode);
}

int open64(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    mode_t mode = (flags & (O_CREAT | O_TMPFILE)) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return is_camera(path) ? open_camera() : forward_open("open64", path, flags, mode);
}

static void paint(unsigned char* picture) {
    const unsigned side = width / fields, rows = side / 2;
    memset(picture, 100, (size_t)width * height);
    memset(picture + (size_t)width * height, 128, (size_t)width * height / 2);
    for (unsigned y = 0; y < rows && y < height; ++y) {
        for (unsigned field = 0; field < fields; ++field) {
            memset(picture + (size_t)y * width + field * side, number >> field & 1 ? 235 : 16, side);
        }
    }
}

static int fail(int error) {
    errno = error;
    return -1;
}

static void describe_format(struct v4l2_pix_format* pix) {
    if (pix->width >= 16 && pix->width <= max_width) width = pix->width & ~1U;
    if (pix->height >= 16 && pix->height <= max_height) height = pix->height & ~1U;
    pix->width = width;
    pix->height = height;
    pix->pixelformat = V4L2_PIX_FMT_YUV420;
    pix->field = V4L2_FIELD_NONE;
    pix->bytesperline = width;
    pix->sizeimage = (unsigned)picture_bytes();
    pix->colorspace = V4L2_COLORSPACE_SMPTE170M;
}

static int queue_buffer(int index) {
    pthread_mutex_lock(&queue_mutex);
    const int room = queued < buffers;
    if (room) queue[queued++] = index;
    pthread_mutex_unlock(&queue_mutex);
    return room ? 0 : fail(EINVAL);
}

/* The oldest buffer in the queue, -1 for none. */
static int take_buffer(void) {
    int index = -1;
    pthread_mutex_lock(&queue_mutex);
    if (queued > 0) {
        index = queue[0];
        memmove(queue, queue + 1, sizeof queue - sizeof queue[0]);
        --queued;
    }
    pthread_mutex_unlock(&queue_mutex);
    return index;
}

static int take_picture(struct v4l2_buffer* buffer) {
    const char* limit = getenv("FAKE_CAMERA_PICTURES");
    if (limit && number >= (unsigned)atoi(limit)) return fail(ENODEV);
    const int index = take_buffer();
    if (index < 0) return fail(EAGAIN);
    due.tv_nsec += 1000000000 / rate;
    if (due.tv_nsec >= 1000000000) {
        due.tv_nsec -= 1000000000;
        ++due.tv_sec;
    }
    if (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &due, NULL) != 0) return fail(EINTR);
    paint(pictures[index]);
    buffer->index = (unsigned)index;
    buffer->bytesused = (unsigned)picture_bytes();
    buffer->flags = V4L2_BUF_FLAG_MAPPED | V4L2_BUF_FLAG_TIMESTAMP_MONOTONIC;
    buffer->field = V4L2_FIELD_NONE;
    buffer->sequence = number++;
    buffer->timestamp.tv_sec = due.tv_sec;
    buffer->timestamp.tv_usec = due.tv_nsec / 1000;
    return 0;
}

static int answer(unsigned long request, void* argument) {
    switch (request) {
        case VIDIOC_QUERYCAP: {
            struct v4l2_capability* capability = argument;
            memset(capability, 0, sizeof *capability);
            strcpy((char*)capability->driver, "fake");
            strcpy((char*)capability->card, "Made-up camera");
            capability->device_caps = V4L2_CAP_VIDEO_CAPTURE | V4L2_CAP_STREAMING;
            capability->capabilities = capability->device_caps | V4L2_CAP_DEVICE_CAPS;
            return 0;
        }
        case VIDIOC_ENUMINPUT: {
            struct v4l2_input* input = argument;
            if (input->index > 0) return fail(EINVAL);
            memset(input, 0, sizeof *input);
            input->type = V4L2_INPUT_TYPE_CAMERA;
            return 0;
        }
        case VIDIOC_G_INPUT:
        case VIDIOC_S_INPUT: *(int*)argument = 0; return 0;
        case VIDIOC_ENUM_FMT: {
            struct v4l2_fmtdesc* format = argument;
            if (format->index > 0) return fail(EINVAL);
            format->pixelformat = V4L2_PIX_FMT_YUV420;
            return 0;
        }
        case VIDIOC_G_FMT:
        case VIDIOC_S_FMT:
        case VIDIOC_TRY_FMT: describe_format(&((struct v4l2_format*)argument)->fmt.pix); return 0;
        case VIDIOC_G_PARM:
        case VIDIOC_S_PARM: {
            struct v4l2_captureparm* capture = &((struct v4l2_streamparm*)argument)->parm.capture;
            capture->capability = V4L2_CAP_TIMEPERFRAME;
            capture->timeperframe.numerator = 1;
            capture->timeperframe.denominator = rate;
            return 0;
        }
        case VIDIOC_REQBUFS: {
            struct v4l2_requestbuffers* wanted = argument;
            if (wanted->count > buffers) wanted->count = buffers;
            return 0;
        }
        case VIDIOC_QUERYBUF: {
            struct v4l2_buffer* buffer = argument;
            buffer->length = (unsigned)buffer_bytes();
            buffer->m.offset = (unsigned)(buffer_bytes() * buffer->index);
            return 0;
        }
        case VIDIOC_QBUF: return queue_buffer((int)((struct v4l2_buffer*)argument)->index);
        case VIDIOC_DQBUF: return take_picture(argument);
        case VIDIOC_STREAMON: return clock_gettime(CLOCK_MONOTONIC, &due);
        case VIDIOC_STREAMOFF: return 0;
        default: return fail(ENOTTY);
    }
}

int ioctl(int fd, unsigned long request, ...) {
    va_list arguments;
    va_start(arguments, request);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    if (fd >= 0 && fd == camera) return answer(request, argument);
    int (*next)(int, unsigned long, ...) = (int (*)(int, unsigned long, ...))dlsym(RTLD_NEXT, "ioctl");
    return next(fd, request, argument);
}

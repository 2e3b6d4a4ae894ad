/* SPDX-License-Identifier: MIT */
#ifndef VYX_VIDEO_H
#define VYX_VIDEO_H

/* Frames of films for other programs: open a file or a camera, read its frames as packed RGB, seek
   by time, and save frames into a new file. C99 and C++; link with -lvyxvideo.

   Order of calls. Reading: open_video, then read_frame and seek_frame in any order, then
   close_video. Writing: save_video, then write_frame once per frame, then close_video, which
   completes the file. These calls, except close_video, take one record that carries their
   inputs, outputs and a message. Set `size` to sizeof the record and fill in the fields marked
   "in"; fields marked "out" are written by the call. All numbers are in the byte order of the
   machine, which has to be a little-endian one with 64-bit pointers; the offsets of the fields are
   part of the interface and never change.

   Errors. `errorMsg` is empty after success and a text that ends with NUL after a failure; the
   texts are quoted below, with printf's directives, where they can come up. "%s" at the end of one
   stands for FFmpeg's words. Texts that every call can leave:

     "Wrong size of the record: %u instead of %u!\n"   `size` is not sizeof the record. Nothing else
                          is looked at or written; without room for the message in a record of the
                          size given, there is none.
     "Handle not set!"                                 `handle` is null.
     "Handle not open!\n"                              never opened, or closed.
     "Handle is of the other kind!\n"                  a reader's for writing or the reverse.
     "Out of memory!\n"
     "Unexpected error: %s!\n"

   A null record gives -1 and leaves no message. No call prints, but for
   list_videoinput_devicenames; none throws or ends the process.

   Ownership. The caller owns records and buffers of frames; the library keeps no pointer to them
   after a call. It owns what a handle stands for until close_video.

   Threads. Handles are independent of each other: several threads may use one each at the same
   time. Calls with the same handle wait for each other, and close_video lets a call that is under
   way finish first. Records must not be shared between calls that run at the same time.

   FFmpeg's own log goes to standard error. Where the program has not chosen a level before it
   opens or saves its first film here, it is set to AV_LOG_QUIET, once; av_log_set_level afterwards
   makes it heard, with a description of every film that is saved. */

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#define VYX_VIDEO_API __attribute__((visibility("default")))
#else
#define VYX_VIDEO_API
#endif

/* Bytes of the text fields, the NUL included. */
#define VYX_TEXT_SIZE 512
#define VYX_CODEC_NAME_SIZE 32

/* What open_video is told and tells. 1616 bytes. */
typedef struct VYX_OpenVideoArgs {
    uint32_t size;                     /* in: 1616 */
    char videoFileName[VYX_TEXT_SIZE]; /* in: path, or "cam:" and a device; see open_video */
    char errorMsg[VYX_TEXT_SIZE];      /* out */
    void* handle;                      /* out: null after a failure */
    int32_t cam_input;                 /* out: 1 when the name began with "cam:", else 0 */
    int32_t frame_width;               /* out: pixels */
    int32_t frame_height;              /* out: pixels */
    int32_t frame_bytes;               /* out: bytes of the buffer that read_frame needs */
    int64_t bit_rate;                  /* out: bits per second of the video, 0 when unknown */
    double duration_sec;               /* out: seconds, 0 when unknown */
    double frame_rate;                 /* out: frames per second, 0 when unknown */
    int64_t video_bit_rate;            /* not used: stays as it is */
    double pixel_aspect_ratio;         /* out: width by height of the picture as it is shown */
    char codec_name[VYX_TEXT_SIZE];    /* out: the decoder's full name */
    int32_t frame_count;               /* out: frames; estimated from duration and rate when the
                                          file does not say, 0 when that is unknown too */
    int32_t bits_per_color;            /* out: 8 or 16, see read_frame */
} VYX_OpenVideoArgs;

/* What read_frame is told and tells. 560 bytes. */
typedef struct VYX_ReadFrameArgs {
    uint32_t size;                /* in: 560 */
    void* handle;                 /* in: from open_video */
    int32_t key_frame_only;       /* in: not 0 passes over all frames but key frames */
    int32_t frame_height;         /* in: as open_video told */
    int32_t frame_width;          /* in: as open_video told */
    int32_t bytes_per_pixel;      /* in: 3, also with 16 bits per colour */
    void* data;                   /* in: buffer of frame_bytes, filled by the call */
    double frame_time;            /* out: seconds */
    char errorMsg[VYX_TEXT_SIZE]; /* out */
} VYX_ReadFrameArgs;

/* What seek_frame is told and tells. 536 bytes. */
typedef struct VYX_SeekFrameArgs {
    uint32_t size;                /* in: 536 */
    void* handle;                 /* in: from open_video */
    double seek_time;             /* in: seconds, on the scale of frame_time */
    char errorMsg[VYX_TEXT_SIZE]; /* out */
} VYX_SeekFrameArgs;

/* What save_video is told and tells. 1616 bytes. */
typedef struct VYX_SaveVideoArgs {
    uint32_t size;                        /* in: 1616 */
    char videoFileName[VYX_TEXT_SIZE];    /* in: path of the file to make */
    char errorMsg[VYX_TEXT_SIZE];         /* out */
    void* handle;                         /* out: null after a failure */
    char codec_name[VYX_CODEC_NAME_SIZE]; /* in: "avi", an encoder of FFmpeg, or empty */
    int32_t width;                        /* in: pixels */
    int32_t height;                       /* in: pixels */
    int32_t bit_rate;                     /* in: bits per second to aim at */
    int32_t group_of_pictures; /* in: at most so many frames from key frame to key frame */
    int32_t frame_rate;        /* in: frames per second, at least 1 */
    int32_t bits_per_color;    /* in: 8 or 16, what write_frame gets; 8 with "avi" */
    char reserved[520];        /* not used */
} VYX_SaveVideoArgs;

/* What write_frame is told and tells. 560 bytes. */
typedef struct VYX_WriteFrameArgs {
    uint32_t size;                /* in: 560 */
    void* handle;                 /* in: from save_video */
    int32_t frame_height;         /* in: pixels */
    int32_t frame_width;          /* in: pixels */
    int32_t bytes_per_pixel;      /* in: 3, also with 16 bits per colour */
    const void* data;             /* in: the frame, laid out as read_frame does it */
    double frame_time;            /* in: seconds from the start of the film */
    char errorMsg[VYX_TEXT_SIZE]; /* out */
} VYX_WriteFrameArgs;

/* Opens a file or a camera for reading. Returns 0, or -1 with a message and a null handle.

   A camera's name is "cam:" followed by its device, as in "cam:/dev/video0", and by options for the
   device, as in "cam:/dev/video0,video_size=640x480,framerate=25". A device with commas in its name
   stands in double quotes. The device alone replaces `videoFileName`. Tokens without "=" are passed
   over. "1394" anywhere in the text asks for a DV camera.

   The first video stream is read; cover pictures do not count. Texts:

     "Name too long: it has no NUL!\n"                 all 512 bytes of `videoFileName` are in use.
     "invalid input device specification!"             nothing follows the double quote.
     "avformat_open_input (%s) failed: %s\n"           with the name of the file.
     "av_find_stream_info failed: %s\n"
     "Couldn't find a video stream\n"
     "Couldn't find a decoder for codec_id: %d\n"      with FFmpeg's number of the codec.
     "Couldn't open codec %s id %d: %s\n"              with the decoder's name and number.
     "Invalid frame size: %dx%d!\n"                    width and height that no buffer can have.
     "Couldn't allocate a video frame - out of memory?\n"

   Decoding uses as many threads as the machine has processors, four at most. */
VYX_VIDEO_API int open_video(VYX_OpenVideoArgs* args);

/* Reads the next frame, in the order of display. Returns 0, 1 with a message, or -1 with a message
   when record or handle are wrong.

   A frame is frame_height rows of frame_width pixels of R, G, B, from the top, without padding:
   bytes when bits_per_color is 8, and 16-bit little-endian numbers from 0 to 65535 when it is 16. A
   frame of another size than the film's first is scaled to that one.

   `frame_time` is the frame's own time stamp. Where a film has none it goes on from the frame
   before by the frame rate, starting from 0. Texts:

     "incorrect dimensions!\n"          height, width or bytes per pixel; nothing has been read.
     "Frame data not set!\n"            `data` is null; nothing has been read.
     "read_and_decode failed: %s\n"     with "End of file" after the last frame; otherwise for a
                                        damaged part, after which reading may go on: "Operation not
                                        permitted" stands for 1000 packets without a frame.
     "sws_getContext failed\n"          the frame's kind of pixels cannot be converted.

   Reading on after the end gives the end again. */
VYX_VIDEO_API int read_frame(VYX_ReadFrameArgs* args);

/* Moves to the first key frame at or after a time, or, when there is none, to the last one before
   it. A time up to the first frame's stands for the start. Returns as read_frame does.

   Containers that search for a time (MPEG programme and transport streams) look for the time of
   decoding, which is a little earlier than frame_time where frames are reordered: a key frame at
   the time, or as little after it, may be passed over. That no key frame follows shows there only
   when read_frame comes to the end, which then goes back once. A film without time stamps knows the
   way to its start only.

   Frames that the decoder has not given out yet come first: read on until `frame_time` is what you
   look for. Text:

     "error while seeking\n"            a time that is not a number, after which reading goes on as
                                        before, or a film that cannot seek, which may then be at its
                                        end. */
VYX_VIDEO_API int seek_frame(VYX_SeekFrameArgs* args);

/* Makes a file for frames. Returns 0, or -1 with a message and a null handle.

   The codec "avi" stands for uncompressed AVI files of 8 bits per colour, made without FFmpeg:
   frames follow each other at the frame rate, whatever their time, and bit_rate and
   group_of_pictures are not looked at. They hold less than 4 GiB. An empty codec chooses container
   and codec by the extension of the file. Any other codec is an encoder of FFmpeg, and the
   container is then the first one of a single file that has this codec as its own, whatever the
   extension: "mpeg4" makes AVI files. Containers that make their own files, one per picture or per
   part of the film, are chosen by an extension only.

   Pixels are converted to what the encoder takes: 4:2:0 for MPEG-4; otherwise RGB with the bits of
   the record, or, when the encoder does not take that, its own first format. Texts:

     "Name too long: it has no NUL!\n"                 of the file or the codec.
     "Invalid frame size: %dx%d!\n"                    width and height below 1, or frames of 2 GiB.
     "Invalid frame rate: %d!\n"                       below 1.
     "Invalid number of bits per color: %d!"           neither 8 nor 16, or, with "avi", not 8.
     "Could not open file for writing!\n"              with the codec "avi".
     "Could not deduce output format from file extension!"
     "Could not deduce output format for the codec!"
     "codec '%s' not found\n"                          FFmpeg has no encoder of that name; the name
                                                       is empty when a container has no video.
     "Could not initialize encoder structures. Possibly out-of-memory!"
     "could not open codec: %s!\n"                     also for sizes and rates the codec has not.
     "could not open file for writing: %s!\n"
     "could not write header: %s!\n"

   The file is opened last: a call that fails before leaves a film of that name as it was, and one
   that fails in writing the header removes it. A name for FFmpeg may begin with "file:".

   Sequences of pictures ("%05d.png" with an empty codec) are files that FFmpeg opens one by one
   with each frame: nothing of them is removed when one cannot be written, neither those before it
   nor what there is of the last one. */
VYX_VIDEO_API int save_video(VYX_SaveVideoArgs* args);

/* Writes one frame. Returns as read_frame does.

   The first frame may have another size than the record of save_video, unless the codec is "avi",
   and is scaled; all others have the first one's. Frames are written at `frame_time`, rounded to
   the frame rate, and at least one step after the frame before; times below 0 count as 0. Texts:

     "incorrect dimensions, expected %dx%dx%d!\n"      with the right height, width and 3.
     "Frame data not set!\n"                           `data` is null.
     "sws_getContext failed\n"
     "avcodec_encode_video failed: %s\n"
     "av_interleaved_write_frame failed: %s\n"         for instance a full disk.
     "Could not write to file: %s!\n"                  the same with the codec "avi".
     "File is full: AVI files hold less than 4 GiB!\n" the file is good with the frames before.

   "avcodec_encode_video", "av_interleaved_write_frame" and "Could not write" mean that the file
   cannot become complete any more: they stay for every further frame, and close_video removes the
   file, but for sequences of pictures. */
VYX_VIDEO_API int write_frame(VYX_WriteFrameArgs* args);

/* Closes a handle of either kind. A file that was written is complete afterwards. One that could
   not be completed, because the disk is full, is removed: the one that was opened, wherever the
   working folder or links lead since, unless another file has taken its place. Devices and
   sequences of pictures stay. Null and handles that are closed already do nothing. Returns 0. */
VYX_VIDEO_API int close_video(void* handle);

/* Tells the names of the capture devices. With a null `names` or a `*count` of 0, stores only the
   number of devices in `*count`. Otherwise copies as many names as there are, at most `*count`, to
   names[0], names[1] and so on, buffers of `max_len` bytes each; longer names are cut, and the NUL
   is always there. Then stores the number of devices, which can be larger. A null `count` does
   nothing. Where /dev cannot be opened there are no devices, and standard error tells why. */
VYX_VIDEO_API void list_videoinput_devicenames(char** names, int* count, int max_len);

/* Frees `n` strings and the array that holds them, all of them from malloc. Null is ignored. */
VYX_VIDEO_API void free_list(char** list, int n);

#ifdef __cplusplus
}
#endif

#endif

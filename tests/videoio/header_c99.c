/* SPDX-License-Identifier: MIT */
/* The header as a C99 program sees it; offsets for the test beside it. */

#include "vyx/video.h"

#include <stddef.h>

#define AT(record, field, offset) \
    typedef char record##_##field##_lies_elsewhere[offsetof(record, field) == (offset) ? 1 : -1]
#define SIZE(record, bytes) \
    typedef char record##_has_another_size[sizeof(record) == (bytes) ? 1 : -1]

AT(VYX_OpenVideoArgs, videoFileName, 4);
AT(VYX_OpenVideoArgs, handle, 1032);
AT(VYX_OpenVideoArgs, bit_rate, 1056);
AT(VYX_OpenVideoArgs, codec_name, 1096);
AT(VYX_OpenVideoArgs, bits_per_color, 1612);
AT(VYX_ReadFrameArgs, handle, 8);
AT(VYX_ReadFrameArgs, data, 32);
AT(VYX_SeekFrameArgs, errorMsg, 24);
AT(VYX_SaveVideoArgs, codec_name, 1040);
AT(VYX_SaveVideoArgs, bits_per_color, 1092);
AT(VYX_WriteFrameArgs, frame_height, 16);
AT(VYX_WriteFrameArgs, frame_time, 40);
SIZE(VYX_OpenVideoArgs, 1616);
SIZE(VYX_ReadFrameArgs, 560);
SIZE(VYX_SeekFrameArgs, 536);
SIZE(VYX_SaveVideoArgs, 1616);
SIZE(VYX_WriteFrameArgs, 560);

int c99_call_without_records(void);

int c99_call_without_records(void) {
    int failures = 0;
    failures += open_video(NULL) == -1;
    failures += read_frame(NULL) == -1;
    failures += seek_frame(NULL) == -1;
    failures += save_video(NULL) == -1;
    failures += write_frame(NULL) == -1;
    failures += close_video(NULL) == 0;
    list_videoinput_devicenames(NULL, NULL, 0);
    free_list(NULL, 3);
    return failures;
}

/* SPDX-License-Identifier: MIT */
#ifndef _GNU_SOURCE
#define _GNU_SOURCE /* for RTLD_NEXT */
#endif
/* Keeps libraries loaded that a program closes, so that the leak checker can still name the driver
   that an allocation came from, and the suppressions can match it. */

#include <dlfcn.h>
#include <stddef.h>
#include <string.h>

int dlclose(void* handle);

int dlclose(void* handle) {
    (void)handle;
    return 0;
}

#ifdef __SANITIZE_THREAD__

/* What Mesa 22.3 records of a display list lies in blocks of 1024 bytes. Where such a block ends
   decides whether the link to the next one is written 4 bytes past its end: the C library's malloc
   has room for them, ThreadSanitizer's has the next block there, and the list's end would never be
   found. */
void* malloc(size_t size);

/* The last call is a jump, so that the caller stays the caller in reports and for suppressions. */
__attribute__((optimize("O2"), no_sanitize("thread"))) void* malloc(size_t size) {
    enum { block = 1024, overrun = 4 };
    static void* (*next)(size_t);
    if (!next) {
        void* found =
            dlsym(RTLD_NEXT, "malloc"); /* programs without the sanitizer are started, too */
        memcpy(&next, &found, sizeof next);
    }
    return next(size == block ? block + overrun : size);
}

#endif

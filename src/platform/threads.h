// SPDX-License-Identifier: MIT
#pragma once

#include <pthread.h>

/// The threads of the player. docs/architecture.md says what each owns.
enum class ThreadRole {
    unnamed,  ///< not one of ours: a test, a library's own thread
    main,     ///< window, OpenGL, interface, event loop
    demux,    ///< reads packets of the open file
    video,    ///< decodes its pictures
    audio,    ///< the sound device's callback
    timer,    ///< SDL's timer, posts refresh events
    thumbs,   ///< makes thumbnails
};

/// Names the calling thread, for `assert_thread`, debuggers and profilers.
void set_thread_role(ThreadRole role);

/// The role of the calling thread.
ThreadRole thread_role();

/// Makes a system call that `thread` is blocked in return early, with EINTR. The thread must exist,
/// joined by nobody yet. Any thread.
void interrupt_system_call(pthread_t thread);

/// Stops a debug build when a named thread other than `role` runs this. Unnamed threads may do
/// anything: they belong to tests.
void assert_thread(ThreadRole role);

// SPDX-License-Identifier: MIT
#include "platform/threads.h"

#include <cassert>
#include <csignal>

namespace {

thread_local ThreadRole current_role = ThreadRole::unnamed;

const char* role_name(ThreadRole role) {
    switch (role) {
        case ThreadRole::unnamed:
            break;
        case ThreadRole::main:
            return "vyx-main";
        case ThreadRole::demux:
            return "vyx-demux";
        case ThreadRole::video:
            return "vyx-video";
        case ThreadRole::audio:
            return "vyx-audio";
        case ThreadRole::timer:
            return "vyx-timer";
        case ThreadRole::thumbs:
            return "vyx-thumbs";
    }
    return "vyx";
}

}  // namespace

void set_thread_role(ThreadRole role) {
    if (current_role == role) return;
    current_role = role;
    // The main thread's name is the program's, which `ps` and `killall` show.
    if (role != ThreadRole::main) pthread_setname_np(pthread_self(), role_name(role));
}

ThreadRole thread_role() {
    return current_role;
}

void interrupt_system_call(pthread_t thread) {
    // Nobody else uses this signal, and without a handler it does nothing.
    static const bool installed = [] {
        struct sigaction action = {};
        action.sa_handler = [](int) {};  // no SA_RESTART: the call is not to go on
        return sigaction(SIGURG, &action, nullptr) == 0;
    }();
    if (installed) pthread_kill(thread, SIGURG);
}

void assert_thread([[maybe_unused]] ThreadRole role) {
    assert(current_role == role || current_role == ThreadRole::unnamed);
}

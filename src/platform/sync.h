// SPDX-License-Identifier: MIT
#pragma once

#include <SDL.h>
#include <SDL_thread.h>

#include <memory>

struct SdlMutexDeleter {
    void operator()(SDL_mutex* mutex) const { SDL_DestroyMutex(mutex); }
};
struct SdlCondDeleter {
    void operator()(SDL_cond* cond) const { SDL_DestroyCond(cond); }
};

/// An SDL mutex and its owner. Null only when SDL could not make one.
using MutexPtr = std::unique_ptr<SDL_mutex, SdlMutexDeleter>;
/// An SDL condition variable and its owner.
using CondPtr = std::unique_ptr<SDL_cond, SdlCondDeleter>;

inline MutexPtr make_mutex() {
    return MutexPtr(SDL_CreateMutex());
}
inline CondPtr make_cond() {
    return CondPtr(SDL_CreateCond());
}

/// Holds an SDL mutex for the life of a scope.
class MutexLock {
  public:
    explicit MutexLock(const MutexPtr& mutex) : mutex_(mutex.get()) { SDL_mutexP(mutex_); }
    ~MutexLock() { SDL_mutexV(mutex_); }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

    /// Waits for a signal; the mutex is released meanwhile.
    void wait(const CondPtr& cond) { SDL_CondWait(cond.get(), mutex_); }

    /// The same for at most `ms` milliseconds.
    void wait_for(const CondPtr& cond, Uint32 ms) { SDL_CondWaitTimeout(cond.get(), mutex_, ms); }

  private:
    SDL_mutex* mutex_;
};

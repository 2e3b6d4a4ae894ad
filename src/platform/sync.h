// SPDX-License-Identifier: MIT
#pragma once

#include <SDL.h>
#include <SDL_thread.h>

#include <memory>
#include <new>
#include <utility>

struct SdlMutexDeleter {
    void operator()(SDL_mutex* mutex) const { SDL_DestroyMutex(mutex); }
};
struct SdlCondDeleter {
    void operator()(SDL_cond* cond) const { SDL_DestroyCond(cond); }
};

/// An SDL mutex that ends with its owner. Nobody may hold it then. It is held by a `MutexLock`.
using MutexPtr = std::unique_ptr<SDL_mutex, SdlMutexDeleter>;
/// An SDL condition variable that ends with its owner. Nobody may wait for it then.
using CondPtr = std::unique_ptr<SDL_cond, SdlCondDeleter>;

/// A new one. Never null: memory that runs out throws std::bad_alloc. Any thread.
inline MutexPtr make_mutex() {
    MutexPtr made(SDL_CreateMutex());
    return made ? std::move(made) : throw std::bad_alloc();
}
/// The same for condition variables.
inline CondPtr make_cond() {
    CondPtr made(SDL_CreateCond());
    return made ? std::move(made) : throw std::bad_alloc();
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

// SPDX-License-Identifier: MIT
#include "media/thumbnail_database.h"

#include "gpu/gl_texture.h"
#include "media/ffmpeg_handles.h"
#include "media/thumbnail_maker.h"
#include "platform/sync.h"
#include "platform/threads.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <new>
#include <set>
#include <utility>
#include <vector>

std::atomic<bool> bAbort{false};

namespace {

constexpr Uint32 pause_ms = 40;

// The worker may outlive main: none of these is ever destroyed.
auto& thumbCache = *new std::map<std::string, Thumbnail>;
auto& thumbCacheRequests = *new std::set<std::string>;
auto& dropped_textures = *new std::vector<gl_texture_resource*>;
MutexPtr& tMutex = *new MutexPtr;  // guards the three above
CondPtr& tCond = *new CondPtr;
SDL_Thread* pThread = nullptr;

// Held by [main] in every call and by the worker while it makes an end of the lock above; taken
// before that, never after it.
std::mutex life_mutex;
std::atomic<bool> making{false};
std::atomic<int> waiting{0};

// Returns false when there is nothing more to make.
bool make_one() {
    const auto first = thumbCacheRequests.begin();
    if (first == thumbCacheRequests.end()) return false;
    const auto request = thumbCacheRequests.extract(first);
    Thumbnail made = create_thumbnail(request.value().c_str());
    // What was broken off says nothing about the film.
    if (bAbort) {
        ThumbnailDatabase::Delete(made);
        return false;
    }
    try {
        ThumbnailDatabase::Add(made);
    } catch (const std::bad_alloc&) {
        ThumbnailDatabase::Delete(made);
        throw;
    }
    return true;
}

void make_batch() {
    making = true;
    try {
        while (make_one() && waiting == 0) {}
    } catch (const std::bad_alloc&) {
        // There is none of this film now; the next look-up with a request asks for it again.
    }
    making = false;
}

void release_dropped() {
    for (gl_texture_resource* texture : dropped_textures)
        texture->release();
    dropped_textures.clear();
}

void make_texture(Thumbnail& entry) {
    const AVFrame* picture = entry.picture;
    entry.texture =
        new gl_texture_resource(picture->height, picture->width, GL_RGB8, picture->data[0]);
    entry.texture->addref();
}

void evict_one() {
    const auto oldest = std::min_element(
        thumbCache.begin(), thumbCache.end(),
        [](const auto& a, const auto& b) { return a.second.last_use < b.second.last_use; });
    ThumbnailDatabase::Delete(oldest->second);
    thumbCache.erase(oldest);
}

// Nobody waits for this thread at the player's end. What reports threads like that knows it by the
// caller of this function, which therefore stands by itself.
[[gnu::noinline]] SDL_Thread* make_thread(int (*body)(void*)) {
    SDL_Thread* thread = SDL_CreateThread(body, nullptr);
    return thread;
}

}  // namespace

void ThumbnailDatabase::Start() {
    if (pThread && !bAbort) return;
    Join();
    const std::lock_guard alive(life_mutex);
    bAbort = false;
    tMutex = make_mutex();
    tCond = make_cond();
    pThread = make_thread(ThreadProc);
}

void ThumbnailDatabase::Abort() {
    bAbort = true;
    // A worker that is making something looks at the flag before it waits, so nobody has to wait
    // for it here. Any other has the lock for a moment only, and a signal sent between its look at
    // the flag and its wait would be lost.
    if (making) return;
    const std::lock_guard alive(life_mutex);
    if (!tMutex) return;
    const MutexLock lock(tMutex);
    SDL_CondSignal(tCond.get());
}

void ThumbnailDatabase::Join() {
    if (pThread) SDL_WaitThread(pThread, nullptr);
    pThread = nullptr;
}

Thumbnail ThumbnailDatabase::Lookup(std::string path, bool request) {
    assert_thread(ThreadRole::main);
    const std::lock_guard alive(life_mutex);
    ++waiting;
    const MutexLock lock(tMutex);
    --waiting;
    release_dropped();
    const auto found = thumbCache.find(path);
    if (found != thumbCache.end()) {
        Thumbnail& entry = found->second;
        entry.last_use = SDL_GetTicks();
        if (entry.picture && !entry.texture) make_texture(entry);
        return entry;
    }
    if (request) {
        thumbCacheRequests.insert(std::move(path));
        if (tCond) SDL_CondSignal(tCond.get());
    }
    Thumbnail empty;
    empty.last_use = SDL_GetTicks();
    return empty;
}

void ThumbnailDatabase::Add(Thumbnail t) {
    const MutexLock lock(tMutex);
    if (thumbCache.size() > thumbnail_limit) evict_one();
    const auto [place, inserted] = thumbCache.try_emplace(t.name, t);
    if (!inserted && place->second.picture != t.picture) Delete(t);
}

void ThumbnailDatabase::Delete(Thumbnail& t) {
    const MutexLock lock(tMutex);
    if (t.picture) OwnPixelsPtr(t.picture).reset();
    t.picture = nullptr;
    if (t.texture) dropped_textures.push_back(t.texture);
    t.texture = nullptr;
}

void ThumbnailDatabase::Clear() {
    const std::lock_guard alive(life_mutex);
    const MutexLock lock(tMutex);
    for (auto& entry : thumbCache)
        Delete(entry.second);
    thumbCache.clear();
}

int ThumbnailDatabase::ThreadProc(void* /*unused*/) {
    set_thread_role(ThreadRole::thumbs);
    SDL_mutexP(tMutex.get());
    while (!bAbort) {
        SDL_CondWait(tCond.get(), tMutex.get());
        if (bAbort) break;
        make_batch();
        SDL_mutexV(tMutex.get());
        SDL_Delay(pause_ms);
        SDL_mutexP(tMutex.get());
    }
    SDL_mutexV(tMutex.get());
    const std::lock_guard alive(life_mutex);
    tMutex.reset();
    tCond.reset();
    return 0;
}

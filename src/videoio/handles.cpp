// SPDX-License-Identifier: MIT
#include "videoio/handles.h"

#include <unordered_map>

namespace {

struct OpenHandles {
    std::mutex mutex;
    std::unordered_map<void*, std::shared_ptr<OpenHandle>> all;
};

OpenHandles& open_handles() {
    // Never destroyed: other threads may still make calls when the process ends.
    static auto& handles = *new OpenHandles;
    return handles;
}

}  // namespace

void* add_handle(std::unique_ptr<VYX_BaseClass> object) {
    auto entry = std::make_shared<OpenHandle>();
    void* handle = object.get();
    entry->object = std::move(object);
    OpenHandles& handles = open_handles();
    const std::lock_guard lock(handles.mutex);
    handles.all.emplace(handle, std::move(entry));
    return handle;
}

std::shared_ptr<OpenHandle> find_handle(void* handle) {
    OpenHandles& handles = open_handles();
    const std::lock_guard lock(handles.mutex);
    const auto found = handles.all.find(handle);
    return found == handles.all.end() ? nullptr : found->second;
}

void close_handle(void* handle) {
    std::shared_ptr<OpenHandle> entry;
    {
        OpenHandles& handles = open_handles();
        const std::lock_guard lock(handles.mutex);
        const auto found = handles.all.find(handle);
        if (found == handles.all.end()) return;
        entry = std::move(found->second);
        handles.all.erase(found);
    }
    const std::lock_guard lock(entry->in_use);
    entry->object.reset();
}

// SPDX-License-Identifier: MIT
#pragma once

#include "videoio/base_class.h"

#include <memory>
#include <mutex>

/// An object that a handle stands for, until it is closed.
struct OpenHandle {
    std::mutex in_use;                      ///< held during a call
    std::unique_ptr<VYX_BaseClass> object;  ///< null once it is closed
};

/// Makes the object known. Returns its handle, which is its address. Any thread.
void* add_handle(std::unique_ptr<VYX_BaseClass> object);

/// What the handle stands for; null when it is not open. Never looks at what it points to. Any
/// thread.
std::shared_ptr<OpenHandle> find_handle(void* handle);

/// Closes the handle and destroys its object when no call uses it any more. Returns when that is
/// done. Nothing happens when the handle is not open. Any thread.
void close_handle(void* handle);

// SPDX-License-Identifier: MIT
#pragma once

#include "core/object.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <memory>

/// A ring of samples that one thread fills while another one looks on; used as
/// `CircularBuffer<float>` for the waveform. [audio] writes, [main] reads, neither ever waits.
///
/// The reader may see samples that are being overwritten at that moment, old or new, never a
/// mixture of the two. The position counts every sample ever written, in unsigned arithmetic: it
/// wraps at 2^32, which goes unnoticed where the capacity is a power of two. Made and released by
/// the thread that owns the stream.
template <class T>
class CircularBuffer : public object {
  public:
    /// A ring of `capacity` samples, all zero. A capacity below 1 counts as 1.
    explicit CircularBuffer(int capacity)
        : storage_(
              std::make_unique_for_overwrite<T[]>(static_cast<std::size_t>(std::max(capacity, 1)))),
          capacity_(std::max(capacity, 1)),
          end_(storage_.get() + capacity_) {
        Erase();
    }

    /// The places of `count` samples from `position` on: `*first_count` of them at `*first` and, if
    /// the end of the storage lies between, `*second_count` more at `*second` (which is set in that
    /// case alone). A count above the capacity is cut to it. Samples go in with `Store`. [audio]
    void Lock(int position, int count, T** first, int* first_count, T** second, int* second_count) {
        count = std::clamp(count, 0, capacity_);
        *first = storage_.get() + index(static_cast<std::uint32_t>(position));
        const int to_end = static_cast<int>(end_ - *first);
        *first_count = std::min(count, to_end);
        *second_count = count - *first_count;
        if (*second_count > 0) *second = storage_.get();
    }

    /// Ends what `Lock` began; there is nothing to undo.
    void Unlock() {}

    /// Puts one sample at a place that `Lock` returned. [audio]
    static void Store(T& place, T sample) {
        std::atomic_ref<T>(place).store(sample, std::memory_order_relaxed);
    }

    /// Makes `count` samples more count as written. [audio]
    void IncrementWritePointer(int count) {
        write_position_.fetch_add(static_cast<std::uint32_t>(count), std::memory_order_release);
    }

    /// The sample at `offset` from the write position: 0 is the oldest one, −1 the latest. Any
    /// thread.
    T Read(int offset) const {
        const std::uint32_t position = write_position_.load(std::memory_order_acquire);
        T& place = storage_[index(position + static_cast<std::uint32_t>(offset))];
        return std::atomic_ref<T>(place).load(std::memory_order_relaxed);
    }

    /// Sets every sample to zero; the write position stays.
    void Erase() {
        for (T* place = storage_.get(); place != end_; ++place)
            Store(*place, T());
    }

    /// The number of samples written so far, modulo 2^32. Any thread.
    int WritePosition() const {
        return static_cast<int>(write_position_.load(std::memory_order_acquire));
    }

    int Capacity() const { return capacity_; }

  private:
    std::size_t index(std::uint32_t position) const {
        return position % static_cast<std::uint32_t>(capacity_);
    }

    static_assert(std::atomic_ref<T>::is_always_lock_free, "the audio thread takes no lock");

    std::unique_ptr<T[]> storage_;
    int capacity_;
    T* end_;
    std::atomic<std::uint32_t> write_position_ = 0;
    [[maybe_unused]] std::int32_t reserved_ = 0;
};

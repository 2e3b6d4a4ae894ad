// SPDX-License-Identifier: MIT
#pragma once

#include "media/ffmpeg_handles.h"
#include "platform/sync.h"

#include <atomic>

/// A waiting packet, and the next one.
struct PacketNode {
    AVPacket* packet;
    PacketNode* next;
};

/// First-in, first-out queue of demuxed packets between two threads.
///
/// Every field is guarded by `mutex`; the two sizes may also be read without it.
struct PacketQueue {
    PacketNode* first = nullptr;
    PacketNode* last = nullptr;
    std::atomic<int> packet_count{0};
    std::atomic<int> byte_size{0};  ///< sum of the payload sizes
    int abort_request = 0;          ///< nothing is handed out any more
    MutexPtr mutex;
    CondPtr cond;
};

/// What a decoder must forget is announced by this one packet, known by its data pointer. Its pts
/// says how many seeks were carried out, as it was when the packet was queued.
AVPacket* flush_packet();
bool is_flush_packet(const AVPacket* packet);

/// A packet without data: the end of the file, for a decoder that holds pictures back.
bool is_empty_packet(const AVPacket* packet);

/// Makes the queue empty and usable. Call `packet_queue_end` when done.
void packet_queue_init(PacketQueue* queue);

/// Appends a packet and takes over its payload, leaving `packet` blank; one that owns no payload is
/// copied, the flush packet is never. Returns 0, or -1 when memory runs out (`packet` is
/// unchanged).
int packet_queue_put(PacketQueue* queue, AVPacket* packet);

/// Appends an empty packet for stream `stream_index`, unless one is waiting at the end already.
/// Returns as `packet_queue_put`.
int packet_queue_put_empty(PacketQueue* queue, int stream_index);

/// Takes the oldest packet into `packet`. Returns 1 with a packet, 0 when there is none and `block`
/// is false, -1 when the queue was aborted.
int packet_queue_get(PacketQueue* queue, AVPacket* packet, bool block);

/// The same, but waits for `ms` milliseconds at most.
int packet_queue_get_within(PacketQueue* queue, AVPacket* packet, Uint32 ms);

/// Whether the oldest packet is the flush packet: everything taken before it is out of date.
bool packet_queue_flush_waits(PacketQueue* queue);

/// Drops every waiting packet. The abort request stays as it is.
void packet_queue_flush(PacketQueue* queue);

/// Makes every waiting and later `packet_queue_get` return -1 at once.
void packet_queue_abort(PacketQueue* queue);
bool packet_queue_aborted(PacketQueue* queue);

/// Drops everything, the mutex and the condition too. Nobody may be waiting.
void packet_queue_end(PacketQueue* queue);

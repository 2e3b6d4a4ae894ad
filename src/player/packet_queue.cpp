// SPDX-License-Identifier: MIT
#include "player/packet_queue.h"

#include <new>

namespace {

std::uint8_t flush_data[] = "FLUSH";

void free_node(PacketNode* node) {
    PacketPtr(node->packet).reset();
    av_free(node);
}

// A node with a blank packet; null when memory runs out.
PacketNode* make_node() {
    auto* node = static_cast<PacketNode*>(av_malloc(sizeof(PacketNode)));
    if (!node) return nullptr;
    *node = {av_packet_alloc(), nullptr};
    if (node->packet) return node;
    av_free(node);
    return nullptr;
}

void append(PacketQueue* queue, PacketNode* node) {
    if (queue->last) {
        queue->last->next = node;
    } else {
        queue->first = node;
    }
    queue->last = node;
    ++queue->packet_count;
    queue->byte_size += node->packet->size;
    SDL_CondSignal(queue->cond.get());
}

// Unlinks the oldest node. The queue is locked and not empty.
PacketNode* take_first(PacketQueue* queue) {
    PacketNode* node = queue->first;
    queue->first = node->next;
    if (!queue->first) queue->last = nullptr;
    --queue->packet_count;
    queue->byte_size -= node->packet->size;
    return node;
}

// Moves the oldest packet into `packet`. The queue is locked. Returns false when it is empty.
bool take_packet(PacketQueue* queue, AVPacket* packet) {
    if (!queue->first) return false;
    PacketNode* node = take_first(queue);
    av_packet_unref(packet);
    av_packet_move_ref(packet, node->packet);
    free_node(node);
    return true;
}

}  // namespace

AVPacket* flush_packet() {
    static AVPacket* packet = [] {
        AVPacket* made = av_packet_alloc();
        if (!made) throw std::bad_alloc();
        made->data = flush_data;
        return made;
    }();
    return packet;
}

bool is_flush_packet(const AVPacket* packet) {
    return packet->data == flush_data;
}

bool is_empty_packet(const AVPacket* packet) {
    return !packet->data && packet->size == 0;
}

void packet_queue_init(PacketQueue* queue) {
    queue->first = queue->last = nullptr;
    queue->packet_count = 0;
    queue->byte_size = 0;
    queue->abort_request = 0;
    queue->mutex = make_mutex();
    queue->cond = make_cond();
}

int packet_queue_put(PacketQueue* queue, AVPacket* packet) {
    const bool flush = is_flush_packet(packet);
    if (!flush && packet->data && av_packet_make_refcounted(packet) < 0) return -1;
    PacketNode* node = make_node();
    if (!node) return -1;
    if (flush) {
        node->packet->data = packet->data;
        node->packet->pts = packet->pts;
    } else {
        av_packet_move_ref(node->packet, packet);
    }
    const MutexLock lock(queue->mutex);
    append(queue, node);
    return 0;
}

int packet_queue_put_empty(PacketQueue* queue, int stream_index) {
    PacketNode* node = make_node();
    if (!node) return -1;
    node->packet->stream_index = stream_index;
    {
        const MutexLock lock(queue->mutex);
        if (!queue->last || !is_empty_packet(queue->last->packet)) {
            append(queue, node);
            return 0;
        }
    }
    free_node(node);
    return 0;
}

int packet_queue_get(PacketQueue* queue, AVPacket* packet, bool block) {
    MutexLock lock(queue->mutex);
    for (;;) {
        if (queue->abort_request) return -1;
        if (take_packet(queue, packet)) return 1;
        if (!block) return 0;
        lock.wait(queue->cond);
    }
}

int packet_queue_get_within(PacketQueue* queue, AVPacket* packet, Uint32 ms) {
    const Uint32 start = SDL_GetTicks();
    MutexLock lock(queue->mutex);
    for (;;) {
        if (queue->abort_request) return -1;
        if (take_packet(queue, packet)) return 1;
        const Uint32 waited = SDL_GetTicks() - start;
        if (waited >= ms) return 0;
        lock.wait_for(queue->cond, ms - waited);
    }
}

bool packet_queue_flush_waits(PacketQueue* queue) {
    const MutexLock lock(queue->mutex);
    return queue->first && is_flush_packet(queue->first->packet);
}

void packet_queue_flush(PacketQueue* queue) {
    const MutexLock lock(queue->mutex);
    while (queue->first)
        free_node(take_first(queue));
}

void packet_queue_abort(PacketQueue* queue) {
    const MutexLock lock(queue->mutex);
    queue->abort_request = 1;
    SDL_CondBroadcast(queue->cond.get());
}

bool packet_queue_aborted(PacketQueue* queue) {
    const MutexLock lock(queue->mutex);
    return queue->abort_request != 0;
}

void packet_queue_end(PacketQueue* queue) {
    packet_queue_flush(queue);
    queue->mutex.reset();
    queue->cond.reset();
}

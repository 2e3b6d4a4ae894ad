// SPDX-License-Identifier: MIT
// Sanitizers bring heaps of their own, of which the C library knows nothing: they leave this out.
#include "platform/heap.h"

#include <gtest/gtest.h>

#include <malloc.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace {

struct Free {
    void operator()(void* block) const { std::free(block); }
};
using Block = std::unique_ptr<void, Free>;

constexpr std::size_t megabyte = 1024 * 1024;

// Seen from outside, so that no compiler leaves an unread block out.
void* volatile last_block;

Block block(std::size_t bytes) {
    Block made(std::malloc(bytes));
    std::memset(made.get(), 1, bytes);
    last_block = made.get();
    return made;
}

// Blocks that come from the system one by one.
std::size_t mapped_blocks() {
    return mallinfo2().hblks;
}

long resident_kilobytes() {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word && word != "RssAnon:") {}
    long kilobytes = 0;
    status >> kilobytes;
    return kilobytes;
}

TEST(Heap, KeepsBlocksOfTheVectorsOfAPicture) {
    set_up_heap();
    const std::size_t before = mapped_blocks();
    Block vectors = block(megabyte * 5 / 2);
    EXPECT_EQ(mapped_blocks(), before);
    const long full = resident_kilobytes();
    vectors.reset();
    EXPECT_GT(resident_kilobytes(), full - 1024) << "it stays for those of the next picture";
}

TEST(Heap, GivesLargerBlocksBack) {
    set_up_heap();
    const std::size_t before = mapped_blocks();
    Block picture = block(3 * megabyte);
    EXPECT_EQ(mapped_blocks(), before + 1);
    picture.reset();
    EXPECT_EQ(mapped_blocks(), before);
    // The C library would keep the next one by itself, having seen one freed.
    const Block next = block(3 * megabyte);
    EXPECT_EQ(mapped_blocks(), before + 1);
}

TEST(Heap, TrimmingGivesBackWhatIsFreeBetweenBlocks) {
    set_up_heap();
    std::vector<Block> blocks;
    for (int i = 0; i < 40; ++i)
        blocks.push_back(block(megabyte));
    const long full = resident_kilobytes();
    for (std::size_t i = 0; i + 1 < blocks.size(); ++i)
        blocks[i].reset();
    EXPECT_GT(resident_kilobytes(), full - 1024) << "the last one keeps the others from the end";
    trim_heap();
    EXPECT_LT(resident_kilobytes(), full - 30 * 1024);
}

}  // namespace

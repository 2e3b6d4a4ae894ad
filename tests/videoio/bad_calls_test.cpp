// SPDX-License-Identifier: MIT
// Records and handles that are not what they should be.

#include "videoio/video_fixture.h"

#include <cstring>

namespace {

class BadCalls : public ::testing::Test {
  protected:
    BadCalls() : reader_(clip("h264_nob.mp4")), writer_(save_args(path_, "avi", 4, 2)) {}

    VYX_SeekFrameArgs seek_args(void* handle) const {
        VYX_SeekFrameArgs args{};
        args.size = sizeof args;
        args.handle = handle;
        return args;
    }
    VYX_ReadFrameArgs read_args(void* handle) const {
        VYX_ReadFrameArgs args = reader_.read;
        args.handle = handle;
        return args;
    }
    VYX_WriteFrameArgs write_args(void* handle) const {
        VYX_WriteFrameArgs args = writer_.write;
        args.handle = handle;
        return args;
    }
    // What all three calls with a handle say to it.
    void expect_refused(void* for_reading, void* for_writing, const char* message) {
        VYX_ReadFrameArgs read = read_args(for_reading);
        EXPECT_EQ(read_frame(&read), -1);
        EXPECT_STREQ(read.errorMsg, message);
        VYX_SeekFrameArgs seek = seek_args(for_reading);
        EXPECT_EQ(seek_frame(&seek), -1);
        EXPECT_STREQ(seek.errorMsg, message);
        VYX_WriteFrameArgs write = write_args(for_writing);
        EXPECT_EQ(write_frame(&write), -1);
        EXPECT_STREQ(write.errorMsg, message);
    }

    const TemporaryFolder folder_;
    const std::string path_ = folder_.path("film.avi");
    ReadFilm reader_;
    WrittenFilm writer_;
};

TEST_F(BadCalls, NoHandle) {
    expect_refused(nullptr, nullptr, "Handle not set!");
}

TEST_F(BadCalls, HandlesOfTheOtherKind) {
    expect_refused(writer_.film.handle, reader_.film.handle, "Handle is of the other kind!\n");
    EXPECT_TRUE(reader_.next()) << "neither is harmed";
    EXPECT_EQ(writer_.frame(Bytes(24), 0.0), 0);
}

TEST_F(BadCalls, ClosedHandles) {
    VYX_OpenVideoArgs film = open_args(clip("h264_nob.mp4"));
    ASSERT_EQ(open_video(&film), 0);
    EXPECT_EQ(close_video(film.handle), 0);
    expect_refused(film.handle, film.handle, "Handle not open!\n");
    EXPECT_EQ(close_video(film.handle), 0) << "closing twice is harmless";
}

TEST_F(BadCalls, WhatWasNeverAHandle) {
    int something = 0;
    expect_refused(&something, &something, "Handle not open!\n");
    expect_refused(reinterpret_cast<void*>(8), reinterpret_cast<void*>(8), "Handle not open!\n");
    EXPECT_EQ(close_video(&something), 0);
    EXPECT_EQ(close_video(nullptr), 0);
}

TEST_F(BadCalls, MessagesOfTheCallBeforeAreGone) {
    VYX_ReadFrameArgs read = read_args(nullptr);
    EXPECT_EQ(read_frame(&read), -1);
    read.handle = reader_.film.handle;
    EXPECT_EQ(read_frame(&read), 0);
    EXPECT_STREQ(read.errorMsg, "");
}

// Calls a function with a record that says it has another size, which lies at the end of that many
// bytes: what is written behind them is found.
template <class Args>
std::string message_of_size(int (*call)(Args*), Args args, std::uint32_t size) {
    args.size = size;
    std::memset(args.errorMsg, 'x', sizeof args.errorMsg);
    Bytes memory(std::max<std::size_t>(size, sizeof args) + 64, 0xAB);
    std::memcpy(memory.data(), &args, sizeof args);
    const Bytes before = memory;
    EXPECT_EQ(call(reinterpret_cast<Args*>(memory.data())), -1);
    for (std::size_t i = size; i < memory.size(); ++i)
        EXPECT_EQ(memory[i], before[i]) << "byte " << i << " of a record of " << size;
    std::memcpy(&args, memory.data(), sizeof args);
    return args.errorMsg[0] == 'x' ? "" : args.errorMsg;
}

TEST_F(BadCalls, RecordsOfAnotherSize) {
    const VYX_OpenVideoArgs open = open_args(clip("h264_nob.mp4"));
    EXPECT_EQ(message_of_size(open_video, open, 0), "");
    EXPECT_EQ(message_of_size(open_video, open, 1027), "") << "no room for the message";
    EXPECT_EQ(message_of_size(open_video, open, 1028),
              "Wrong size of the record: 1028 instead of 1616!\n");
    EXPECT_EQ(message_of_size(open_video, open, 1617),
              "Wrong size of the record: 1617 instead of 1616!\n");
    EXPECT_EQ(message_of_size(read_frame, reader_.read, 559), "");
    EXPECT_EQ(message_of_size(read_frame, reader_.read, 568),
              "Wrong size of the record: 568 instead of 560!\n");
    EXPECT_EQ(message_of_size(seek_frame, seek_args(reader_.film.handle), 24), "");
    EXPECT_EQ(message_of_size(seek_frame, seek_args(reader_.film.handle), 544),
              "Wrong size of the record: 544 instead of 536!\n");
    EXPECT_EQ(message_of_size(save_video, save_args(folder_.path("x.avi"), "avi", 4, 2), 1200),
              "Wrong size of the record: 1200 instead of 1616!\n");
    EXPECT_FALSE(exists(folder_.path("x.avi")));
    EXPECT_EQ(message_of_size(write_frame, writer_.write, 8), "");
}

TEST_F(BadCalls, DimensionsOfAFrame) {
    const auto refused = [&](auto change) {
        VYX_ReadFrameArgs read = read_args(reader_.film.handle);
        change(read);
        EXPECT_EQ(read_frame(&read), 1);
        return std::string(read.errorMsg);
    };
    for (const int bytes : {4, 1, -1, 0, 6}) {
        EXPECT_EQ(refused([&](VYX_ReadFrameArgs& read) { read.bytes_per_pixel = bytes; }),
                  "incorrect dimensions!\n");
    }
    for (const int size : {0, -1, 65536, 319}) {
        EXPECT_EQ(refused([&](VYX_ReadFrameArgs& read) { read.frame_width = size; }),
                  "incorrect dimensions!\n");
        EXPECT_EQ(refused([&](VYX_ReadFrameArgs& read) { read.frame_height = size; }),
                  "incorrect dimensions!\n");
    }
    EXPECT_EQ(refused([](VYX_ReadFrameArgs& read) { read.data = nullptr; }),
              "Frame data not set!\n");
    ASSERT_TRUE(reader_.next());
    EXPECT_EQ(reader_.read.frame_time, 0.0) << "nothing had been read";
}

TEST_F(BadCalls, ListsOfStrings) {
    auto** list = static_cast<char**>(std::malloc(2 * sizeof(char*)));
    list[0] = strdup("one");
    list[1] = nullptr;
    free_list(list, 2);
    free_list(static_cast<char**>(std::malloc(8)), 0);
    free_list(static_cast<char**>(std::malloc(8)), -1);
    free_list(nullptr, 5);
}

}  // namespace

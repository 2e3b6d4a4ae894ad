// SPDX-License-Identifier: MIT
#include "media/film_maker.h"
#include "media/thumbnail_file.h"
#include "media/thumbnail_maker.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <random>

namespace {

// Measured: 0 to 50 ms, with sanitizers, too. A pipe that is opened blocks for ever.
constexpr double prompt_ms = 1500.0;

void expect_nothing(const std::string& path) {
    const MadeThumbnail made(path);
    EXPECT_EQ(made->picture, nullptr) << path;
    EXPECT_LT(made.milliseconds(), prompt_ms) << path;
}

void write_file(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string read_file(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(BadThumbnail, WhatIsNoFileIsNotOpened) {
    const TemporaryFolder folder;
    expect_nothing("");
    expect_nothing(folder.path("nothing.mp4"));
    expect_nothing(folder.folder().string());
    expect_nothing("/dev/zero");
    expect_nothing("/dev/null");
    expect_nothing("/dev/tty");
    ASSERT_EQ(mkfifo(folder.path("pipe.mp4").c_str(), 0600), 0);
    expect_nothing(folder.path("pipe.mp4"));
    std::filesystem::create_symlink("loop.mp4", folder.path("loop.mp4"));
    expect_nothing(folder.path("loop.mp4"));
    std::filesystem::create_symlink(folder.path("pipe.mp4"), folder.path("link.mp4"));
    expect_nothing(folder.path("link.mp4"));
}

TEST(BadThumbnail, SocketIsNotOpened) {
    const TemporaryFolder folder;
    const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    folder.path("s.mp4").copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    expect_nothing(folder.path("s.mp4"));
    close(listener);
}

TEST(BadThumbnail, PipeWithAWriterIsLeftAlone) {
    const TemporaryFolder folder;
    const std::string pipe = folder.path("pipe.mp4");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const int end = open(pipe.c_str(), O_RDWR | O_NONBLOCK);
    ASSERT_EQ(write(end, "abc", 3), 3);
    expect_nothing(pipe);
    char bytes[8];
    EXPECT_EQ(read(end, bytes, sizeof bytes), 3) << "somebody else read from it";
    close(end);
}

TEST(BadThumbnail, UnreadableFile) {
    const TemporaryFolder folder;
    const std::string path = folder.path("secret.mp4");
    std::filesystem::copy(clip("h264.mp4"), path);
    std::filesystem::permissions(path, std::filesystem::perms::none);
    if (geteuid() != 0) expect_nothing(path);
    // Regular, may be opened by its owner, and cannot be read from its start.
    expect_nothing("/proc/self/mem");
}

TEST(BadThumbnail, BrokenFilms) {
    const TemporaryFolder folder;
    expect_nothing(clip("empty.mp4"));
    expect_nothing(clip("text.mp4"));
    expect_nothing(clip("truncated.mp4"));
    std::mt19937 generator(1);
    std::string noise(300000, '\0');
    for (char& byte : noise)
        byte = static_cast<char>(generator());
    write_file(folder.path("noise.avi"), noise);
    expect_nothing(folder.path("noise.avi"));
    write_file(folder.path("zeros.mkv"), std::string(300000, '\0'));
    expect_nothing(folder.path("zeros.mkv"));
}

// The same file with some bytes changed, or cut, in many ways.
TEST(BadThumbnail, DamagedFilmsEndPromptly) {
    const TemporaryFolder folder;
    std::mt19937 generator(7);
    int pictures = 0;
    for (const char* name : {"h264.mp4", "mpeg4.avi", "h264.mkv", "size_change.ts", "mpeg2.mpg"}) {
        const std::string whole = read_file(clip(name));
        ASSERT_GT(whole.size(), 1000U);
        for (int i = 0; i < 12; ++i) {
            std::string bytes = whole;
            for (int n = 0; n < 40; ++n)
                bytes[generator() % (i % 2 ? 2000 : bytes.size())] = static_cast<char>(generator());
            if (i % 3 == 0) bytes.resize(generator() % bytes.size());
            const std::string path = folder.path(name);
            write_file(path, bytes);
            const MadeThumbnail made(path);
            EXPECT_LT(made.milliseconds(), 2 * prompt_ms) << name << " " << i;
            pictures += made->picture != nullptr;
        }
    }
    // Many survive: the damage reaches the decoders.
    EXPECT_GT(pictures, 10);  // measured: 46 of 60
    EXPECT_LT(pictures, 60);
}

TEST(BadThumbnail, HugePicturesAreNotDecoded) {
    const TemporaryFolder folder;
    // A picture of one pixel on a canvas of 16384 x 16384, which takes a gigabyte.
    const unsigned char gif[] = {'G', 'I', 'F', '8', '9', 'a', 0,   64,   0, 64, 0x80, 0,
                                 0,   0,   0,   0,   255, 255, 255, ',',  0, 0,  0,    0,
                                 1,   0,   1,   0,   0,   2,   2,   0x44, 1, 0,  ';'};
    const std::string huge(std::begin(gif), std::end(gif));
    write_file(folder.path("huge.gif"), huge);
    expect_nothing(folder.path("huge.gif"));
    std::string small = huge;
    small[7] = small[9] = 1;
    write_file(folder.path("small.gif"), small);
    const MadeThumbnail made(folder.path("small.gif"));
    EXPECT_NE(made->picture, nullptr) << "it was not the size";
}

TEST(BadThumbnail, NamesAreNamesOfFiles) {
    const TemporaryFolder folder;
    const WorkingFolder inside(folder);
    for (const std::string name :
         {"http:film.mp4", "a:b.mp4", "-", "concat:x|y.mp4", "%03d.mp4", "[a] b\n.mp4",
          "\xff\xfe.mp4", "pipe:0", "subfile,,start,0,end,0,,:x.mp4", "film.jpg", "list.m3u8"}) {
        std::filesystem::copy(clip("h264.mp4"), folder.path(name));
        const MadeThumbnail made(name);
        EXPECT_NE(made->picture, nullptr) << name;
    }
    const std::string longest(251, 'x');
    std::filesystem::copy(clip("h264.mp4"), folder.path(longest + ".mp4"));
    const MadeThumbnail made(longest + ".mp4");
    EXPECT_NE(made->picture, nullptr);
}

TEST(BadThumbnail, PlaylistsOpenNothing) {
    const TemporaryFolder folder;
    const WorkingFolder inside(folder);
    std::filesystem::copy(clip("h264.mp4"), folder.path("film.mp4"));
    std::filesystem::copy(clip("size_change.ts"), folder.path("film.ts"));
    ASSERT_EQ(mkfifo(folder.path("pipe.ts").c_str(), 0600), 0);
    const std::string head = "#EXTM3U\n#EXT-X-TARGETDURATION:4\n#EXTINF:4,\n";
    const std::string tail = "\n#EXT-X-ENDLIST\n";
    for (const std::string target : {"film.ts", "pipe.ts", "http://127.0.0.1:9/x.ts"}) {
        write_file(folder.path("list.m3u8"), head + target + tail);
        expect_nothing("list.m3u8");
        write_file(folder.path("list.avi"), "ffconcat version 1.0\nfile " + target + "\n");
        expect_nothing("list.avi");
    }
    write_file(folder.path("talk.sdp"),
               "v=0\no=- 0 0 IN IP4 127.0.0.1\ns=x\nc=IN IP4 127.0.0.1\nt=0 0\n"
               "m=video 50000 RTP/AVP 96\na=rtpmap:96 H264/90000\n");
    expect_nothing("talk.sdp");
}

TEST(BadThumbnail, NoTimeNoPicture) {
    const MadeThumbnail made(clip("h264.mp4"), 0);
    EXPECT_EQ(made->picture, nullptr);
    EXPECT_LT(made.milliseconds(), prompt_ms);
}

TEST(BadThumbnail, AbortEndsIt) {
    bAbort = true;
    const MadeThumbnail made(clip("h264.mp4"), 100000);
    bAbort = false;
    EXPECT_EQ(made->picture, nullptr);
}

TEST(BadThumbnail, AbortEndsItInTheMiddle) {
    for (const int packets : {1, 20, 100}) {
        abort_after_packets = packets;
        const MadeThumbnail made(clip("no_keys.mkv"), 100000);
        EXPECT_TRUE(bAbort) << "nobody read as much";
        bAbort = false;
        EXPECT_EQ(abort_after_packets, 0);
        EXPECT_EQ(made->picture, nullptr);
        EXPECT_EQ(packets_after_abort, 0);
    }
}

TEST(Patience, EndsWithItsTimeOrTheFlag) {
    std::atomic<bool> abort{false};
    const Patience none(abort, std::chrono::milliseconds(0));
    EXPECT_TRUE(none.half_over());
    EXPECT_TRUE(none.over());
    const Patience much(abort, std::chrono::hours(1));
    EXPECT_FALSE(much.half_over());
    EXPECT_FALSE(much.over());
    abort = true;
    EXPECT_TRUE(much.over());
    EXPECT_FALSE(much.half_over());
}

}  // namespace

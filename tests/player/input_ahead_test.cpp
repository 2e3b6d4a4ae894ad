// SPDX-License-Identifier: MIT
#include "player/input_ahead.h"

#include "support/player_fixture.h"
#include "support/temporary_folder.h"

#include <sys/stat.h>

#include <fstream>

namespace {

class InputAheadTest : public ::testing::Test {
  protected:
    void TearDown() override {
        is_.format_context.reset();
        forget_input_ahead();
    }
    InputAhead take(const std::string& name) {
        is_.filename = name;
        return take_input_ahead(&is_);
    }
    VideoState is_;
};

TEST_F(InputAheadTest, FileIsTakenOnceWithItsStreams) {
    open_input_ahead(clip("h264.mp4").c_str());
    ASSERT_EQ(take(clip("h264.mp4")), InputAhead::opened);
    ASSERT_NE(is_.format_context, nullptr);
    EXPECT_EQ(is_.format_context->nb_streams, 2U);
    EXPECT_GT(is_.format_context->streams[0]->codecpar->width, 0);
    EXPECT_EQ(take(clip("h264.mp4")), InputAhead::none);
}

TEST_F(InputAheadTest, NobodyOpenedThatOne) {
    EXPECT_EQ(take(clip("h264.mp4")), InputAhead::none);
    open_input_ahead(clip("h264.mp4").c_str());
    EXPECT_EQ(take(clip("vp9.webm")), InputAhead::none);
    EXPECT_EQ(is_.format_context, nullptr);
}

TEST_F(InputAheadTest, ReadingStopsWithItsFilm) {
    open_input_ahead(clip("h264.mp4").c_str());
    ASSERT_EQ(take(clip("h264.mp4")), InputAhead::opened);
    const AVIOInterruptCB& stop = is_.format_context->interrupt_callback;
    EXPECT_EQ(stop.callback(stop.opaque), 0);
    is_.abort_request = true;
    EXPECT_NE(stop.callback(stop.opaque), 0);
}

TEST_F(InputAheadTest, WhatCannotBeReadIsToldOnce) {
    const TemporaryFolder folder;
    const std::string name = folder.path("text.mp4");
    std::ofstream(name) << "no film at all";
    open_input_ahead(name.c_str());
    EXPECT_EQ(take(name), InputAhead::failed);
    EXPECT_EQ(take(name), InputAhead::none);
}

TEST_F(InputAheadTest, OnlyOrdinaryFilesAreOpened) {
    const TemporaryFolder folder;
    const std::string pipe = folder.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& name :
         {pipe, folder.folder().string(), folder.path("none"), std::string()}) {
        open_input_ahead(name.c_str());
        EXPECT_EQ(take(name), InputAhead::none) << name;
    }
}

}  // namespace

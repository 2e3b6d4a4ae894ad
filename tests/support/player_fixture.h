// SPDX-License-Identifier: MIT
#pragma once

#include "player/stream.h"
#include "support/gl_fixture.h"

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

/// Full path of a test clip.
std::string clip(const std::string& name);

/// The name of a test case that plays the clip `name` of its parameter.
template <class Parameter>
std::string clip_test_name(const ::testing::TestParamInfo<Parameter>& test) {
    std::string name = test.param.name;
    std::replace(name.begin(), name.end(), '.', '_');
    return name;
}

/// What a test notes of a picture that it takes from the queue.
struct TakenPicture {
    double pts;
    int width;
    int height;
    Grid<MotionVector> motion_vectors;
    Grid<std::uint8_t> quantization_table;
};

/// Runs the real engine on real clips; the test stands in for the event loop and the display.
class PlayerTest : public GlTest {
  protected:
    void SetUp() override;
    void TearDown() override;

    /// Opens a clip, or any other path. The film starts in normal playback, not looped.
    VideoState* open(const std::string& path, const StreamOptions& options = {});

    /// Handles the events that wait: slots get their storage, the others are noted.
    void pump();
    bool failed(const VideoState* is) const;
    int ends() const { return ends_; }

    /// Pumps until `done` holds. Returns false when `seconds` have passed first.
    bool wait_until(const std::function<bool()>& done, double seconds = 20.0);

    /// Takes queued pictures as fast as they come, until `count` are there or the film has ended.
    std::vector<TakenPicture> take(VideoState* is, std::size_t count = SIZE_MAX);

    /// The picture at the head of the queue; null while there is none.
    VideoPicture* head(VideoState* is);

  private:
    std::vector<VideoState*> failed_;
    int ends_ = 0;
};

/// Number of threads of this process.
int thread_count();

/// The number written into a picture of a numbered clip, given its luma or red at a position.
int read_number(int width, int height, const std::function<float(int x, int y)>& brightness);

// SPDX-License-Identifier: MIT
#include "videoio/camera_name.h"

#include "media/capture_formats.h"

#include <gtest/gtest.h>

namespace {

using Options = std::vector<std::pair<std::string, std::string>>;

CameraName parsed(const char* name) {
    CameraName camera;
    EXPECT_TRUE(parse_camera_name(name, camera)) << name;
    return camera;
}

TEST(CameraNameTest, KnowsCameras) {
    EXPECT_TRUE(is_camera_name("cam:/dev/video0"));
    EXPECT_TRUE(is_camera_name("cam:"));
    EXPECT_FALSE(is_camera_name("cam"));
    EXPECT_FALSE(is_camera_name("/cam:"));
    EXPECT_FALSE(is_camera_name("CAM:/dev/video0"));
}

TEST(CameraNameTest, DeviceAlone) {
    const CameraName camera = parsed("cam:/dev/video0");
    EXPECT_EQ(camera.device, "/dev/video0");
    EXPECT_TRUE(camera.options.empty());
}

TEST(CameraNameTest, DeviceInQuotes) {
    const CameraName camera = parsed("cam:\"/dev/video0\",video_size=640x480");
    EXPECT_EQ(camera.device, "/dev/video0");
    EXPECT_EQ(camera.options, (Options{{"video_size", "640x480"}}));
    EXPECT_EQ(parsed("cam:\"a,b\",c=d").device, "a,b");
}

TEST(CameraNameTest, OpenedQuotesReachToTheEnd) {
    EXPECT_EQ(parsed("cam:\"/dev/video0").device, "/dev/video0");
    EXPECT_EQ(parsed("cam:\"a,b=c").device, "a,b=c");
    EXPECT_TRUE(parsed("cam:\"a,b=c").options.empty());
}

TEST(CameraNameTest, LoneQuoteIsInvalid) {
    CameraName camera;
    EXPECT_FALSE(parse_camera_name("cam:\"", camera));
    EXPECT_FALSE(parse_camera_name("cam:\"\"", camera)) << "nothing but quotes";
}

TEST(CameraNameTest, QuotesAfterACommaAreNone) {
    const CameraName camera = parsed("cam:dev,title=\"x\"");
    EXPECT_EQ(camera.device, "dev");
    EXPECT_EQ(camera.options, (Options{{"title", "\"x\""}}));
}

TEST(CameraNameTest, TextBeforeTheFirstQuoteIsPassedOver) {
    EXPECT_EQ(parsed("cam:abc\"dev\"").device, "dev");
}

TEST(CameraNameTest, OnlyTokensWithEqualsSignAreOptions) {
    const CameraName camera = parsed("cam:dev,ignored,framerate=25,,input_format=mjpeg,=,a=b=c");
    EXPECT_EQ(camera.options,
              (Options{{"framerate", "25"}, {"input_format", "mjpeg"}, {"", ""}, {"a", "b=c"}}));
}

}  // namespace

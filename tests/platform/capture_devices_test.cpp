// SPDX-License-Identifier: MIT
#include "platform/capture_devices.h"

#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <vector>

namespace {

namespace fs = std::filesystem;

class DeviceFolder : public ::testing::Test {
  protected:
    void device(const std::string& name) const { std::ofstream(path(name)); }
    void link(const std::string& name, const std::string& target) const {
        fs::create_symlink(target, path(name));
    }
    std::string path(const std::string& name) const { return folder_.path(name); }

    std::vector<std::string> list() const {
        char** names = nullptr;
        const int count = list_video_inputs(&names, folder_.folder().c_str());
        std::vector<std::string> result;
        for (int i = 0; i < count; ++i) {
            result.emplace_back(names[i]);
            std::free(names[i]);
        }
        EXPECT_EQ(names == nullptr, count == 0);
        std::free(names);
        return result;
    }

    TemporaryFolder folder_;
};

TEST(CaptureDevices, NamesOfDevices) {
    for (const char* name : {"video0", "video", "radio3", "vbi1", "v4l-subdev7"}) {
        EXPECT_TRUE(is_v4l_dev(name)) << name;
    }
    for (const char* name : {"vide", "sda", "v4l", "xvideo0", ""}) {
        EXPECT_FALSE(is_v4l_dev(name)) << name;
    }
}

TEST(CaptureDevices, SortKeys) {
    EXPECT_EQ(calc_node_val("/dev/video0"), 0);
    EXPECT_EQ(calc_node_val("/dev/video12"), 12);
    EXPECT_EQ(calc_node_val("video"), 0);
    EXPECT_EQ(calc_node_val("/dev/radio3"), 256 + 3);
    EXPECT_EQ(calc_node_val("/dev/vbi5"), 512 + 5);
    EXPECT_EQ(calc_node_val("/dev/v4l-subdev0"), 768);
    EXPECT_EQ(calc_node_val("/dev/v4l-subdev9"), 768) << "the same for every one";
    EXPECT_TRUE(sort_on_device_name("/dev/video12", "/dev/radio3"));
    EXPECT_FALSE(sort_on_device_name("/dev/radio3", "/dev/video12"));
}

TEST_F(DeviceFolder, AliasIsLeftOut) {
    device("video1");
    device("video0");
    link("video", "video0");
    EXPECT_EQ(list(), (std::vector{path("video0"), path("video1")}));
}

TEST_F(DeviceFolder, AbsoluteAliasIsLeftOutToo) {
    // Targets are read into 64 bytes; longer ones are no longer recognised.
    ASSERT_LE(path("video3").size(), 63U);
    device("video3");
    link("video9", path("video3"));
    EXPECT_EQ(list(), (std::vector{path("video3")}));
}

TEST_F(DeviceFolder, LinkToSomethingElseStays) {
    device("video0");
    link("video1", "/elsewhere/video0");
    EXPECT_EQ(list(), (std::vector{path("video0"), path("video1")}));
}

TEST_F(DeviceFolder, KindsStandOneAfterTheOther) {
    for (const char* name : {"vbi0", "radio0", "v4l-subdev1", "video10", "video2", "sda1"})
        device(name);
    EXPECT_EQ(list(), (std::vector{path("video2"), path("video10"), path("radio0"), path("vbi0"),
                                   path("v4l-subdev1")}));
}

TEST_F(DeviceFolder, EmptyFolder) {
    EXPECT_TRUE(list().empty());
}

TEST_F(DeviceFolder, MissingFolderIsReported) {
    fs::remove_all(folder_.folder());
    ::testing::internal::CaptureStderr();
    EXPECT_TRUE(list().empty());
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "Couldn't open the directory: No such file or directory\n");
}

}  // namespace

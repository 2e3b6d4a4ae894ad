// SPDX-License-Identifier: MIT
#include "videoio/device_names.h"

#include "support/temporary_folder.h"
#include "vyx/video.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <fstream>

namespace {

class DeviceNames : public ::testing::Test {
  protected:
    DeviceNames() {
        for (const char* name : {"video1", "video0", "radio3", "sda"})
            std::ofstream(folder_.path(name));
        std::filesystem::create_symlink("video0", folder_.path("video"));
        clear();
    }
    void clear() {
        for (std::size_t i = 0; i < names_.size(); ++i) {
            std::memset(buffers_[i].data(), '#', buffers_[i].size());
            names_[i] = buffers_[i].data();
        }
    }
    // Whether a buffer holds a name and is untouched behind `max_len` bytes.
    void expect_name(std::size_t i, const std::string& name, std::size_t max_len) const {
        EXPECT_STREQ(names_[i], name.c_str());
        EXPECT_EQ(buffers_[i][max_len], '#');
    }
    void expect_untouched(std::size_t i) const { EXPECT_EQ(buffers_[i][0], '#'); }

    const TemporaryFolder folder_;
    const std::string path_ = folder_.folder().string();
    std::array<std::array<char, 128>, 4> buffers_{};
    std::array<char*, 4> names_{};
};

TEST_F(DeviceNames, OnlyCounted) {
    int count = 0;
    copy_device_names(path_.c_str(), nullptr, &count, 100);
    EXPECT_EQ(count, 3) << "the link is no device of its own";
    count = 2;
    copy_device_names(path_.c_str(), nullptr, &count, 100);
    EXPECT_EQ(count, 3);
    count = 0;
    copy_device_names(path_.c_str(), names_.data(), &count, 100);
    EXPECT_EQ(count, 3);
    expect_untouched(0);
}

TEST_F(DeviceNames, Copied) {
    int count = 4;
    copy_device_names(path_.c_str(), names_.data(), &count, 100);
    EXPECT_EQ(count, 3);
    expect_name(0, folder_.path("video0"), 100);
    expect_name(1, folder_.path("video1"), 100);
    expect_name(2, folder_.path("radio3"), 100);
    expect_untouched(3);
}

TEST_F(DeviceNames, NoMoreThanThereIsRoomFor) {
    int count = 1;
    copy_device_names(path_.c_str(), names_.data(), &count, 100);
    EXPECT_EQ(count, 3) << "the number of devices";
    expect_name(0, folder_.path("video0"), 100);
    expect_untouched(1);
}

TEST_F(DeviceNames, LongNamesAreCut) {
    int count = 4;
    copy_device_names(path_.c_str(), names_.data(), &count, 5);
    EXPECT_EQ(count, 3);
    expect_name(0, "/tmp", 5);
    clear();
    copy_device_names(path_.c_str(), names_.data(), &count, 0);
    expect_untouched(0);
    copy_device_names(path_.c_str(), names_.data(), &count, -1);
    expect_untouched(0);
}

TEST_F(DeviceNames, NegativeCountsAndMissingBuffers) {
    int count = -3;
    copy_device_names(path_.c_str(), names_.data(), &count, 100);
    EXPECT_EQ(count, 3);
    expect_untouched(0);
    names_[0] = nullptr;
    copy_device_names(path_.c_str(), names_.data(), &count, 100);
    expect_name(1, folder_.path("video1"), 100);
}

TEST_F(DeviceNames, FoldersThatCannotBeOpened) {
    int count = 4;
    ::testing::internal::CaptureStderr();
    copy_device_names(folder_.path("nothing").c_str(), names_.data(), &count, 100);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "Couldn't open the directory: No such file or directory\n");
    EXPECT_EQ(count, 0);
    expect_untouched(0);
}

TEST_F(DeviceNames, OfThisMachine) {
    int direct = 0;
    copy_device_names("/dev", nullptr, &direct, 0);
    int count = 0;
    list_videoinput_devicenames(nullptr, &count, 100);
    EXPECT_EQ(count, direct);
    list_videoinput_devicenames(names_.data(), nullptr, 100);
    expect_untouched(0);
}

}  // namespace

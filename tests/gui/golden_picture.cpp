// SPDX-License-Identifier: MIT
#include "gui/golden_picture.h"

#include <GL/glew.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace {

void save(const std::string& name, const PngPicture& found, const PngPicture& golden) {
    write_png("failed-" + name + ".png", found);
    PngPicture differences = found;
    for (std::size_t i = 0; i < found.bytes.size(); ++i) {
        const int d = std::abs(int{found.bytes[i]} - int{golden.bytes[i]});
        differences.bytes[i] = static_cast<std::uint8_t>(std::min(255, d * 16));
    }
    write_png("failed-" + name + "-difference.png", differences);
}

}  // namespace

void expect_golden(const std::string& name, const PngPicture& found, PictureLimits limits,
                   const std::string& folder) {
    const std::string kept = folder + "/" + name + ".png";
    if (std::getenv("VYX_WRITE_GOLDEN")) {
        ASSERT_TRUE(write_png(kept, found));
        return;
    }
    const PngPicture golden = read_png(kept);
    if (found.width != golden.width || found.height != golden.height) {
        write_png("failed-" + name + ".png", found);
        FAIL() << found.width << " x " << found.height << " is not the size of " << kept
               << "; saved as failed-" << name;
    }
    int largest = 0;
    double sum = 0.0;
    for (std::size_t i = 0; i < found.bytes.size(); ++i) {
        const int d = std::abs(int{found.bytes[i]} - int{golden.bytes[i]});
        largest = std::max(largest, d);
        sum += d;
    }
    const double mean = sum / static_cast<double>(found.bytes.size());
    ::testing::Test::RecordProperty("largest", largest);
    ::testing::Test::RecordProperty("mean", std::to_string(mean));
    EXPECT_LE(largest, limits.largest) << "saved as failed-" << name;
    EXPECT_LE(mean, limits.mean) << "saved as failed-" << name;
    if (largest > limits.largest || mean > limits.mean) save(name, found, golden);
}

std::string foreign_driver() {
    const std::string driver = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    return driver.find("llvmpipe") == std::string::npos ? driver : "";
}

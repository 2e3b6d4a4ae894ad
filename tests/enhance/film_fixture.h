// SPDX-License-Identifier: MIT
#pragma once

#include "enhance/rgb_picture.h"

#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

/// A picture made by calling `texel(x, y, channel)` everywhere, 0 to 255.
RgbPicture make_rgb(int width, int height, const std::function<int(int, int, int)>& texel);

/// A smooth picture that moves with `time`, and noise.
RgbPicture moving_picture(int width, int height, int time);
RgbPicture noise_picture(int width, int height, unsigned seed);

/// Largest and mean difference of two pictures of one size, in steps of 8 bits. 1000 for two sizes.
struct RgbDifference {
    int largest = 1000;
    double mean = 1000.0;
};
RgbDifference difference(const RgbPicture& a, const RgbPicture& b);

/// Every picture of a film or of numbered pictures, and the times they are shown at.
struct Film {
    std::vector<RgbPicture> pictures;
    std::vector<double> seconds;
};
Film read_film(const std::string& path);

/// Writes pictures shown every 1/25 s, in whatever the name stands for.
void write_film(const std::string& path, const std::vector<RgbPicture>& pictures);

/// A folder for files, and the program in this process.
class FilmTest : public ::testing::Test {
  protected:
    FilmTest();

    /// Runs the program with these arguments; keeps what it wrote to standard error. Returns its
    /// status.
    int enhance(const std::vector<std::string>& arguments);

    TemporaryFolder folder_;
    std::string errors_;
    std::string output_;
};

// SPDX-License-Identifier: MIT
#include "enhance/options.h"

#include <gtest/gtest.h>

namespace {

EnhanceOptions parsed(const std::vector<std::string>& arguments) {
    std::string error;
    const EnhanceOptions options = parse_options(arguments, error);
    EXPECT_EQ(error, "");
    return options;
}

std::string error_of(const std::vector<std::string>& arguments) {
    std::string error;
    parse_options(arguments, error);
    return error;
}

TEST(EnhanceOptions, NamesAloneChangeNothing) {
    const EnhanceOptions options = parsed({"in.mp4", "out.mkv"});
    EXPECT_EQ(options.input, "in.mp4");
    EXPECT_EQ(options.output, "out.mkv");
    EXPECT_EQ(options.spatial, 1);
    EXPECT_EQ(options.temporal, 1);
    EXPECT_EQ(options.algorithm, Algorithm::super_resolution);
    EXPECT_EQ(options.method, Method::four_neighbours);
    EXPECT_EQ(options.sharpening_level, 0.0F);
    EXPECT_EQ(options.pictures, -1);
    EXPECT_FALSE(options.demo);
    EXPECT_FALSE(options.help);
}

TEST(EnhanceOptions, EveryOption) {
    const EnhanceOptions options =
        parsed({"--spatial", "3", "in", "--algorithm", "denoise", "--denoise", "12.5", "--sharpen",
                "40", "--temporal", "5", "--method", "8nb", "--demo", "--frames", "7", "out"});
    EXPECT_EQ(options.input, "in");
    EXPECT_EQ(options.output, "out");
    EXPECT_EQ(options.spatial, 3);
    EXPECT_EQ(options.algorithm, Algorithm::denoise);
    EXPECT_EQ(options.denoising_level, 12.5F);
    EXPECT_FLOAT_EQ(options.sharpening_level, 0.4F);
    EXPECT_EQ(options.temporal, 5);
    EXPECT_EQ(options.method, Method::eight_neighbours);
    EXPECT_TRUE(options.demo);
    EXPECT_EQ(options.pictures, 7);
    EXPECT_EQ(parsed({"in", "out", "--method", "blend"}).method, Method::blend);
    EXPECT_EQ(parsed({"in", "out", "--method", "4nb"}).method, Method::four_neighbours);
}

TEST(EnhanceOptions, ValuesMayBeAttached) {
    EXPECT_EQ(parsed({"--spatial=2", "a=b", "out"}).spatial, 2);
    EXPECT_EQ(parsed({"--spatial=2", "a=b", "out"}).input, "a=b") << "only options are cut";
}

TEST(EnhanceOptions, DenoisingLevelAsksForTheDenoiser) {
    EXPECT_EQ(parsed({"--denoise", "10", "in", "out"}).algorithm, Algorithm::denoise);
    EXPECT_EQ(error_of({"--denoise", "10", "--algorithm", "sr", "in", "out"}),
              "--denoise has no effect with --algorithm sr");
    EXPECT_EQ(error_of({"--algorithm", "sr", "--denoise", "10", "in", "out"}),
              "--denoise has no effect with --algorithm sr");
    EXPECT_EQ(parsed({"--algorithm", "denoise", "in", "out"}).denoising_level, 20.0F);
}

TEST(EnhanceOptions, NamesMayStartWithDashesBehindTwo) {
    const EnhanceOptions options = parsed({"--demo", "--", "--demo", "-x"});
    EXPECT_EQ(options.input, "--demo");
    EXPECT_EQ(options.output, "-x");
}

TEST(EnhanceOptions, HelpNeedsNoNames) {
    EXPECT_TRUE(parsed({"--help"}).help);
    EXPECT_TRUE(parsed({"-h"}).help);
    const std::string text = options_help();
    for (const char* option : {"--spatial", "--algorithm", "--denoise", "--sharpen", "--temporal",
                               "--method", "--demo", "--frames", "--help", "Sound is not copied"}) {
        EXPECT_NE(text.find(option), std::string::npos) << option;
    }
}

TEST(EnhanceOptions, WhatIsWrongIsSaid) {
    EXPECT_EQ(error_of({}), "INPUT and OUTPUT must be given");
    EXPECT_EQ(error_of({"in"}), "INPUT and OUTPUT must be given");
    EXPECT_EQ(error_of({"in", "out", "more"}),
              "one INPUT and one OUTPUT, but there is also 'more'");
    EXPECT_EQ(error_of({"in", ""}), "a file name is empty");
    EXPECT_EQ(error_of({"--fast", "in", "out"}), "there is no option '--fast'");
    EXPECT_EQ(error_of({"-x", "in", "out"}), "there is no option '-x'");
    EXPECT_EQ(error_of({"in", "out", "--spatial"}), "--spatial needs a value");
    EXPECT_EQ(error_of({"in", "out", "--demo=1"}), "--demo takes no value");
    EXPECT_EQ(error_of({"--method", "16nb", "in", "out"}),
              "--method takes blend, 4nb or 8nb, not '16nb'");
    EXPECT_EQ(error_of({"--algorithm", "", "in", "out"}),
              "--algorithm takes sr or denoise, not ''");
}

TEST(EnhanceOptions, NumbersHaveBounds) {
    for (const char* value : {"0", "5", "-1", "2.5", "two", "", "2 ", "99999999999999999999"}) {
        EXPECT_EQ(error_of({"--spatial", value, "in", "out"}),
                  std::string("--spatial takes a whole number from 1 to 4, not '") + value + "'");
    }
    for (const char* value : {"0", "6"})
        EXPECT_NE(error_of({"--temporal", value, "in", "out"}), "") << value;
    for (const char* value : {"-0.1", "60.1", "nan", "inf", "x", "1e"}) {
        EXPECT_EQ(error_of({"--denoise", value, "in", "out"}),
                  std::string("--denoise takes a number from 0 to 60, not '") + value + "'");
    }
    EXPECT_EQ(error_of({"--sharpen", "101", "in", "out"}),
              "--sharpen takes a number from 0 to 100, not '101'");
    EXPECT_NE(error_of({"--frames", "0", "in", "out"}), "");
    EXPECT_EQ(parsed({"--denoise", "0", "in", "out"}).denoising_level, 0.0F);
    EXPECT_EQ(parsed({"--denoise", "60", "in", "out"}).denoising_level, 60.0F);
}

}  // namespace

// SPDX-License-Identifier: MIT
#include "player/command_line.h"

#include "core/settings.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

PlayVideoArgs parse(std::vector<std::string> words) {
    words.insert(words.begin(), "vyx");
    std::vector<char*> argv;
    for (std::string& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    PlayVideoArgs args = default_args();
    parse_command_line(static_cast<int>(words.size()), argv.data(), &args);
    return args;
}

TEST(CommandLine, Defaults) {
    const PlayVideoArgs args = parse({});
    EXPECT_EQ(args.size, 576);
    EXPECT_STREQ(args.title, "VYX Video Player");
    EXPECT_EQ(args.width, 800);
    EXPECT_EQ(args.height, 600);
    EXPECT_TRUE(args.center_window);
    EXPECT_TRUE(args.show_banner);
    EXPECT_FALSE(args.fullscreen);
    EXPECT_TRUE(args.loop);
    EXPECT_FALSE(args.preload);
    EXPECT_EQ(args.rate, 1.0);
    EXPECT_STREQ(args.filename, "");
    EXPECT_EQ(args.postprocessing_callback, nullptr);
    for (const float value :
         {args.denoising, args.sharpening, args.contrast, args.brightness, args.temp_thresh}) {
        EXPECT_EQ(value, 0.0F);
    }
    EXPECT_FALSE(args.demo);
}

TEST(CommandLine, Flags) {
    const PlayVideoArgs args = parse({"--preload", "--fullscreen", "--demo", "--loop"});
    EXPECT_TRUE(args.preload);
    EXPECT_TRUE(args.fullscreen);
    EXPECT_TRUE(args.demo);
    EXPECT_TRUE(args.loop);
    EXPECT_TRUE(parse({"-f"}).fullscreen);
    EXPECT_TRUE(parse({"-g"}).demo);
    EXPECT_TRUE(parse({"-l"}).loop);
}

TEST(CommandLine, NumbersArePercentOrPlainAndClamped) {
    EXPECT_EQ(parse({"--sharpening", "150"}).sharpening, 1.0F);
    EXPECT_EQ(parse({"--sharpening", "25"}).sharpening, 0.25F);
    EXPECT_EQ(parse({"--sharpening", "-1"}).sharpening, 0.0F);
    EXPECT_EQ(parse({"-s", "50"}).sharpening, 0.5F);
    EXPECT_EQ(parse({"--brightness", "-80"}).brightness, -0.5F);
    EXPECT_EQ(parse({"--brightness=80"}).brightness, 0.5F);
    EXPECT_EQ(parse({"-b", "-20"}).brightness, static_cast<float>(-20 * 0.01));
    EXPECT_EQ(parse({"--contrast", "300"}).contrast, 2.0F);
    EXPECT_EQ(parse({"--contrast", "-300"}).contrast, -2.0F);
    EXPECT_EQ(parse({"-c", "30"}).contrast, static_cast<float>(30 * 0.01));
    EXPECT_EQ(parse({"--denoising", "100"}).denoising, 60.0F);
    EXPECT_EQ(parse({"--denoising", "12.5"}).denoising, 12.5F);
    EXPECT_EQ(parse({"--temp_thresh", "-3"}).temp_thresh, 0.0F);
    EXPECT_EQ(parse({"-t", "50"}).temp_thresh, 40.0F);
}

TEST(CommandLine, WhatIsNoNumber) {
    EXPECT_EQ(parse({"--contrast", "nan"}).contrast, -2.0F) << "counts as the lower bound";
    EXPECT_EQ(parse({"--contrast", "inf"}).contrast, 2.0F);
    EXPECT_EQ(parse({"--contrast", "much"}).contrast, 0.0F);
}

TEST(CommandLine, ShortFormsWithTheirMismatch) {
    // "-d" takes no argument, so it has no value to give; "-p" takes one and drops it.
    const PlayVideoArgs denoise = parse({"-d", "30", "film.mkv"});
    EXPECT_EQ(denoise.denoising, 0.0F);
    EXPECT_STREQ(denoise.filename, "30");
    const PlayVideoArgs preload = parse({"-p", "film.mkv"});
    EXPECT_TRUE(preload.preload);
    EXPECT_STREQ(preload.filename, "");
}

TEST(CommandLine, UnknownAndIncompleteOptionsArePassedOverInSilence) {
    ::testing::internal::CaptureStderr();
    ::testing::internal::CaptureStdout();
    const PlayVideoArgs args = parse({"--unknown", "-x", "film.mkv", "--denoising"});
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_STREQ(args.filename, "film.mkv");
    EXPECT_EQ(args.denoising, 0.0F);
}

TEST(CommandLine, FirstFileCounts) {
    EXPECT_STREQ(parse({"a.mkv", "b.mkv"}).filename, "a.mkv");
    EXPECT_STREQ(parse({"a.mkv", "--demo"}).filename, "a.mkv");
    EXPECT_STREQ(parse({"--", "--demo"}).filename, "--demo");
}

TEST(CommandLine, LongNamesAreCut) {
    const std::string name(300, 'x');
    EXPECT_EQ(std::string(parse({name}).filename), name.substr(0, 255));
}

TEST(StartValues, OnlyWhatWasGivenIsApplied) {
    Settings& s = master_settings;
    PlayVideoArgs args = parse({"--brightness", "0"});
    apply_start_values(args);
    EXPECT_EQ(s.brightness.getValue(), 0.0F);
    EXPECT_EQ(s.denoising_level.getValue(), 20.0F);
    EXPECT_EQ(s.upscaling_algorithm.getValue(), 0.0F);
    EXPECT_EQ(s.demo_mode.getValue(), 0.0F);
    EXPECT_EQ(s.recursive_filtering_threshold.getValue(), 1.0F);

    args = parse({"--denoising", "5", "--sharpening", "40", "--contrast", "-50", "--brightness",
                  "10", "--temp_thresh", "7", "--demo"});
    apply_start_values(args);
    EXPECT_NEAR(s.denoising_level.getValue(), 5.0F, 1e-4F);
    EXPECT_EQ(s.upscaling_algorithm.toInt(), 1) << "any denoising switches it on";
    EXPECT_NEAR(s.sharpening_level.getValue(), 0.4F, 1e-4F);
    EXPECT_NEAR(s.contrast.getValue(), -0.5F, 1e-4F);
    EXPECT_NEAR(s.brightness.getValue(), 0.1F, 1e-4F);
    EXPECT_NEAR(s.recursive_filtering_threshold.getValue(), 7.0F, 1e-4F);
    EXPECT_TRUE(s.demo_mode.toBool());
    for (Value* value : {&s.brightness, &s.contrast, &s.denoising_level, &s.upscaling_algorithm,
                         &s.sharpening_level, &s.demo_mode, &s.recursive_filtering_threshold}) {
        value->setValue(value->default_value());
    }
}

}  // namespace

// SPDX-License-Identifier: MIT
// Which picture the window shows, and where.

#include "support/display_fixture.h"

#include <memory>

namespace {

TEST_F(VideoDisplayTest, NothingThereClearsTheWindow) {
    EXPECT_FALSE(display(0, 0));
    const Image image = window();
    EXPECT_NEAR(image.at(0, 0).r, 5.0F / 255.0F, 0.003F);
    EXPECT_NEAR(image.at(160, 120).b, 5.0F / 255.0F, 0.003F);
}

TEST_F(VideoDisplayTest, PictureLiesInTheMiddleOfTheWindow) {
    queue(0, 208);
    EXPECT_TRUE(display(0, 1));
    const Image image = window();
    // 4:3 in 320 x 240: the whole window.
    for (const auto& [x, y] : {std::pair{1, 1}, {318, 1}, {1, 238}, {318, 238}, {160, 120}}) {
        EXPECT_NEAR(image.at(x, y).g * 255, converted(208), 2.0F) << x << ", " << y;
    }
    reset_video_scaling_animation();
    master_settings.spatial_zoom.setValue(2);
    queue(0, 208);
    display(0, 1);
    const Image plain = window();
    EXPECT_NEAR(plain.at(127, 120).g * 255, 5, 1.0F);
    EXPECT_NEAR(plain.at(129, 120).g * 255, converted(208), 2.0F);
    EXPECT_NEAR(plain.at(190, 120).g * 255, converted(208), 2.0F);
    EXPECT_NEAR(plain.at(193, 120).g * 255, 5, 1.0F);
}

TEST_F(VideoDisplayTest, UntouchedPicturesNeedNoTexture) {
    VideoPicture& pic = queue(0, 100);
    display(0, 1);
    EXPECT_TRUE(pic.rgb.IsNull());
    EXPECT_TRUE(shown_.IsNull());
    EXPECT_TRUE(pic.seen);
    EXPECT_FALSE(pic.uploaded);
    EXPECT_NEAR(middle(), converted(100), 2);
}

TEST_F(VideoDisplayTest, BothRoadsShowTheSame) {
    for (const int grey : {16, 77, 180, 235}) {
        queue(0, grey);
        display(0, 1);
        const Image direct = window();
        master_settings.temporal_upscaling_factor.setValue(1);
        VideoPicture& pic = queue(0, grey);
        display(0, 1);
        EXPECT_TRUE(pic.uploaded);
        EXPECT_TRUE(pic.converted);
        EXPECT_LE(largest_difference(window(), direct, 3), 1.01F / 255.0F);
        master_settings.temporal_upscaling_factor.setValue(0);
    }
}

TEST_F(VideoDisplayTest, PicturesLargerThanTheirPlaceAreInterpolatedInTheWindow) {
    master_settings.temporal_upscaling_factor.setValue(3);
    const auto show_second = [this](int read_index, int grey_before, int grey) {
        queue(read_index, grey_before);
        queue(read_index + 1, grey);
        phase_ = 0.0F;
        display(read_index, 2);
        phase_ = 1.0F;  // a quarter of the way
        display(read_index + 1, 1);
    };
    show_second(0, 60, 180);
    EXPECT_NEAR(middle(), converted(90), 2);
    EXPECT_FALSE(output_.IsNull());
    output_ = nullptr;
    for (VideoPicture* pic : {&slots_[2], &slots_[3]}) {
        pic->width = 4 * window_width;
        pic->height = 4 * window_height;
        make_pixel_buffer(*pic);
    }
    show_second(2, 60, 180);
    EXPECT_NEAR(middle(), converted(90), 2);
    EXPECT_TRUE(output_.IsNull());
    // A redraw that prepares nothing shows the picture itself.
    paused_ = true;
    display(3, 1);
    EXPECT_NEAR(middle(), converted(180), 2);
}

TEST_F(VideoDisplayTest, EveryPictureIsFilledOnceAndOnlyWhileQueued) {
    queue(0, 50);
    queue(1, 60);
    queue(2, 70);
    slots_[3].ready = false;
    display(0, 3);
    ASSERT_EQ(source_.fills.size(), 3U);
    EXPECT_EQ(source_.fills[0].form, BufferForm::interleaved);
    display(0, 3);
    EXPECT_EQ(source_.fills.size(), 3U);
    queue(3, 80);
    display(1, 2);
    EXPECT_EQ(source_.fills.size(), 3U) << "slot 3 is not queued: it may be being written";
    display(1, 3);
    EXPECT_EQ(source_.fills.size(), 4U);
}

// Of a film in 4K on a smaller screen, and of most films in a window.
TEST_F(VideoDisplayTest, PicturesOfTwiceTheirPlaceAreHalved) {
    const auto resize = [this](int slot, int w, int h) {
        VideoPicture& pic = slots_[static_cast<std::size_t>(slot)];
        make_pixel_buffer(pic);
        pic.width = w;
        pic.height = h;
        pic.frame = std::make_unique<DecodedFrame>();
    };
    resize(0, 2 * window_width, 2 * window_height);
    queue(0, 100);
    display(0, 1);
    ASSERT_EQ(source_.fills.size(), 1U);
    EXPECT_EQ(source_.fills[0].form, BufferForm::halved);
    EXPECT_FALSE(planes_.halved.IsNull());
    EXPECT_TRUE(planes_.y.IsNull());
    EXPECT_NEAR(middle(), converted(100), 2);
    // The next one is a little smaller than that.
    resize(1, 2 * window_width - 2, 2 * window_height - 2);
    queue(1, 140);
    display(1, 1);
    EXPECT_EQ(source_.fills.back().form, BufferForm::interleaved);
    EXPECT_TRUE(planes_.halved.IsNull());
    EXPECT_NEAR(middle(), converted(140), 2);
    // Passes want all of it.
    master_settings.temporal_upscaling_factor.setValue(1);
    resize(2, 2 * window_width, 2 * window_height);
    queue(2, 180);
    display(2, 1);
    EXPECT_EQ(source_.fills.back().form, BufferForm::packed);
    EXPECT_NEAR(middle(), converted(180), 2);
}

// With the number of pictures that are queued still: the one that stays may be among them.
class HalvedPicture : public VideoDisplayTest, public testing::WithParamInterface<int> {
  protected:
    void SetUp() override {
        VideoDisplayTest::SetUp();
        VideoPicture& pic = slots_[0];
        pic.width = 2 * window_width;
        pic.height = 2 * window_height;
        make_pixel_buffer(pic);
        pic.frame = std::make_unique<DecodedFrame>();
        queue(0, 100);
        display(0, 1);
        paused_ = true;
    }
};

TEST_P(HalvedPicture, ThatStaysIsRestoredWhenItsPlaceGrows) {
    const int queued = GetParam();
    EXPECT_FALSE(planes_.halved.IsNull());
    display(0, 1);
    EXPECT_EQ(source_.fills.size(), 1U) << "its place is the same";
    master_settings.spatial_zoom.setValue(2);  // pixel by pixel: twice as large
    display(0, queued);
    ASSERT_EQ(source_.fills.size(), 2U);
    EXPECT_EQ(source_.fills[1].form, BufferForm::interleaved);
    EXPECT_TRUE(planes_.halved.IsNull());
    EXPECT_NEAR(middle(), converted(100), 2);
    display(0, queued);
    EXPECT_EQ(source_.fills.size(), 2U);
}

// A change of settings is for the next picture; this one is not left coarse for it.
TEST_P(HalvedPicture, IsRestoredWhateverTheNextOneNeeds) {
    const int queued = GetParam();
    master_settings.temporal_upscaling_factor.setValue(1);
    display(0, queued);
    EXPECT_FALSE(planes_.halved.IsNull());
    master_settings.spatial_zoom.setValue(2);
    display(0, queued);
    EXPECT_TRUE(planes_.halved.IsNull());
    EXPECT_FALSE(planes_.y.IsNull());
    EXPECT_NEAR(middle(), converted(100), 2);
    const std::size_t fills = source_.fills.size();
    display(0, queued);
    display(0, queued);
    EXPECT_LE(source_.fills.size(), fills + 1)
        << "once more for the next refresh, not with every redraw";
    EXPECT_NEAR(middle(), converted(100), 2);
}

INSTANTIATE_TEST_SUITE_P(Queued, HalvedPicture, testing::Values(0, 1));

// RGB takes twice the memory of YUV 4:2:0, and four slots of large pictures many megabytes.
TEST_F(VideoDisplayTest, BuffersAreAsLargeAsWhatTheyHold) {
    const auto size_of_buffer = [&](int slot) {
        GLint bytes = -1;
        glBindBuffer(GL_PIXEL_UNPACK_BUFFER, slots_[static_cast<std::size_t>(slot)].pbo);
        glGetBufferParameteriv(GL_PIXEL_UNPACK_BUFFER, GL_BUFFER_SIZE, &bytes);
        glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
        return bytes;
    };
    VideoPicture& pic = queue(0, 50);
    const int rgb = pic.width * 3 * pic.height;
    EXPECT_EQ(size_of_buffer(0), 0) << "nothing is in it yet";
    display(0, 1);
    EXPECT_EQ(size_of_buffer(0), rgb / 2);
    master_settings.offload_decoding.setValue(0);
    queue(1, 60);
    display(1, 1);
    EXPECT_EQ(size_of_buffer(1), rgb);
    master_settings.offload_decoding.setValue(1);
    queue(1, 70);
    display(1, 1);
    EXPECT_EQ(size_of_buffer(1), rgb / 2);
    EXPECT_NEAR(middle(), converted(70), 2);
}

TEST_F(VideoDisplayTest, UnfinishedSlotIsNotShown) {
    queue(0, 50);
    display(0, 1);
    queue(1, 90).ready = false;
    display(1, 1);
    EXPECT_NEAR(middle(), converted(50), 2);
    EXPECT_EQ(source_.fills.size(), 1U);
}

TEST_F(VideoDisplayTest, ChangeOfConversionRefillsWhatWaits) {
    queue(0, 50);
    queue(1, 60);
    display(0, 2);
    master_settings.offload_decoding.setValue(0);
    display(1, 1);
    ASSERT_EQ(source_.fills.size(), 3U);
    EXPECT_EQ(source_.fills[2].pts, 60);
    EXPECT_EQ(source_.fills[2].form, BufferForm::rgb);
    EXPECT_TRUE(slots_[1].uploaded);
    EXPECT_NEAR(middle(), 60, 2) << "plain RGB is shown as it is";
}

TEST_F(VideoDisplayTest, OtherFormatsAreConvertedByTheSource) {
    queue(0, 90, false);
    display(0, 1);
    ASSERT_EQ(source_.fills.size(), 1U);
    EXPECT_EQ(source_.fills[0].form, BufferForm::rgb);
    EXPECT_NEAR(middle(), 90, 2);
}

TEST_F(VideoDisplayTest, BrightnessReachesEveryRoad) {
    master_settings.brightness.setValue(0.2F);
    queue(0, 90, false);
    display(0, 1);
    EXPECT_NEAR(middle(), 90 + 51, 2);
    queue(0, 90);
    display(0, 1);
    EXPECT_NEAR(middle(), converted(90) + 51, 2);
}

TEST_F(VideoDisplayTest, PausedRedrawTouchesNoPicture) {
    queue(0, 50);
    display(0, 1);
    VideoPicture& next = queue(1, 90);
    paused_ = true;
    display(1, 1);
    EXPECT_NEAR(middle(), converted(50), 2);
    EXPECT_FALSE(next.seen || next.uploaded);
    EXPECT_EQ(shown_index_, 0);
    master_settings.demo_mode.setValue(1);
    display(1, 1);
    EXPECT_NEAR(middle(), converted(50), 2) << "also not when a setting changes";
}

TEST_F(VideoDisplayTest, StepShowsOnePictureAndIsUsedUp) {
    master_settings.temporal_upscaling_factor.setValue(4);
    queue(3, 40);
    display(3, 1);
    queue(0, 50);
    paused_ = true;
    step_ = true;
    phase_ = 3.25F;
    display(0, 1);
    EXPECT_FALSE(step_);
    EXPECT_EQ(phase_, 1.0F);
    EXPECT_NEAR(middle(), converted(50), 2) << "the picture itself, not one between two";
    queue(1, 90);
    display(1, 1);
    EXPECT_NEAR(middle(), converted(50), 2);
}

TEST_F(VideoDisplayTest, StepWithoutInterpolationLeavesTheNextPictureForLater) {
    queue(0, 50);
    display(0, 1);
    VideoPicture& next = queue(1, 90);
    paused_ = true;
    step_ = true;
    phase_ = 3.25F;
    display(1, 1);
    EXPECT_FALSE(step_);
    EXPECT_EQ(phase_, 1.0F);
    EXPECT_EQ(shown_index_, 0);
    EXPECT_NEAR(middle(), converted(50), 2);
    EXPECT_FALSE(next.seen || next.uploaded);
    paused_ = false;
    display(1, 1);
    EXPECT_NEAR(middle(), converted(90), 2);
}

TEST_F(VideoDisplayTest, StepWithAnEmptyQueueLeavesTheSlotToItsWriter) {
    queue(0, 100);
    display(0, 1);
    paused_ = true;
    for (const bool seen : {false, true}) {  // as the video thread left it or is about to change it
        slots_[1].seen = seen;
        step_ = true;
        display(1, 0);
        EXPECT_FALSE(step_);
        EXPECT_EQ(shown_index_, 0);
        EXPECT_NEAR(middle(), converted(100), 2);
    }
}

TEST_F(VideoDisplayTest, PicturesInMemoryAreShownWithoutPixelBuffers) {
    pixel_buffers_ = false;
    VideoPicture& pic = slots_[0];
    pic.width = width;
    pic.height = height;
    pic.surface.reset(
        SDL_CreateRGBSurface(SDL_SWSURFACE, width, height, 24, 0xFF, 0xFF00, 0xFF0000, 0));
    auto* pixels = static_cast<std::uint8_t*>(pic.surface->pixels);
    std::fill_n(pixels, pic.surface->pitch * height / 2, std::uint8_t{200});
    std::fill_n(pixels + pic.surface->pitch * height / 2, pic.surface->pitch * height / 2,
                std::uint8_t{60});
    pic.ready = true;
    EXPECT_TRUE(display(0, 1));
    EXPECT_TRUE(source_.fills.empty());
    EXPECT_EQ(pic.pbo, 0U);
    EXPECT_TRUE(pic.uploaded);
    const Image image = window();
    EXPECT_NEAR(image.at(160, 20).r * 255, 200, 1.0F) << "the first rows are on top";
    EXPECT_NEAR(image.at(160, 220).r * 255, 60, 1.0F);
}

// Numbers that programs were given.
std::vector<float> uniforms;
PFNGLUNIFORM1FPROC real_uniform = nullptr;
void GLAPIENTRY note_uniform(GLint location, GLfloat value) {
    uniforms.push_back(value);
    real_uniform(location, value);
}

TEST_F(VideoDisplayTest, ScanningShowsItsEffectAtThePicturesHeight) {
    master_settings.spatial_zoom.setValue(2);
    VideoPicture& pic = queue(0, 100);
    const auto given = [](float value) {
        return std::count(uniforms.begin(), uniforms.end(), value);
    };
    for (bool* scan : {&rewind_, &fast_forward_}) {
        *scan = true;
        uniforms.clear();
        real_uniform = std::exchange(__glewUniform1f, note_uniform);
        display(0, 1);
        __glewUniform1f = real_uniform;
        *scan = false;
        EXPECT_TRUE(pic.uploaded) << "the effect needs a texture";
        EXPECT_TRUE(planes_.y.IsNull());
        EXPECT_EQ(given(9876.78F / height), 1);
        EXPECT_EQ(given(window_height), 1);
        const Image image = window();
        float lowest = 1.0F;
        float highest = 0.0F;
        for (int y = (window_height - height) / 2; y < (window_height + height) / 2; ++y) {
            lowest = std::min(lowest, image.at(160, y).r);
            highest = std::max(highest, image.at(160, y).r);
        }
        EXPECT_NEAR(lowest * 255, converted(100), 3);
        EXPECT_GT(highest, lowest + 0.1F) << "noise in bands";
    }
    queue(0, 100);
    display(0, 1);
    EXPECT_FALSE(planes_.y.IsNull()) << "afterwards pictures go straight to the window again";
    EXPECT_NEAR(middle(), converted(100), 2);
}

TEST_F(VideoDisplayTest, EmptyQueueKeepsTheLastPicture) {
    queue(0, 50);
    queue(1, 90);
    display(0, 2);
    EXPECT_TRUE(display(1, 0));
    EXPECT_NEAR(middle(), converted(50), 2) << "never a slot out of order";
}

TEST_F(VideoDisplayTest, DemoModeDrawsItsLine) {
    master_settings.demo_mode.setValue(1);
    queue(0, 120);
    display(0, 1);
    const Image image = window();
    // The line is texel 32 of 64, five pixels wide here.
    const Rgba& line = image.at(162, 100);
    EXPECT_GT(line.r, 0.9F);
    EXPECT_LT(line.g, 0.1F);
    EXPECT_NEAR(image.at(100, 100).g * 255, converted(120), 2.0F);
    EXPECT_NEAR(image.at(250, 100).g * 255, converted(120), 2.0F);
}

PostprocessingInfo hooked;
int hook_calls = 0;
void note_hook(PostprocessingInfo* info) {
    hooked = *info;
    ++hook_calls;
}

TEST_F(VideoDisplayTest, HookSeesEveryPictureOnce) {
    hook_calls = 0;
    hook_ = note_hook;
    master_settings.temporal_upscaling_factor.setValue(1);
    VideoPicture& pic = queue(0, 120);
    phase_ = 1.0F;
    display(0, 1);
    display(0, 1);
    EXPECT_EQ(hook_calls, 1);
    EXPECT_TRUE(pic.is_enhanced);
    EXPECT_EQ(hooked.size, 80U);
    EXPECT_EQ(hooked.texture, pic.enhanced->name());
    EXPECT_EQ(hooked.target, pic.enhanced->target());
    EXPECT_EQ(hooked.internal_format, static_cast<unsigned>(GL_RGBA16F_ARB));
    EXPECT_EQ(hooked.pixel_format, static_cast<unsigned>(GL_RGBA));
    EXPECT_EQ(hooked.width, width);
    EXPECT_EQ(hooked.height, height);
    EXPECT_EQ(hooked.spatial_factor, 1);
    EXPECT_EQ(hooked.temporal_factor, 2);
    EXPECT_EQ(hooked.block_width, 8);
    EXPECT_EQ(hooked.block_height, 8);
    EXPECT_EQ(hooked.playback_speed_index, 4);
    EXPECT_EQ(hooked.pts, 120.0);
    EXPECT_EQ(hooked.phase, 0.5);
    EXPECT_EQ(hooked.video_clock, 12.5);
    EXPECT_EQ(hooked.master_clock, 13.5);
}

}  // namespace

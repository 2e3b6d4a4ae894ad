// SPDX-License-Identifier: MIT
// The animation without a film against plain arithmetic, pixel by pixel.

#include "gpu/no_signal.h"

#include "gpu/video_display.h"
#include "support/gl_fixture.h"

#include <algorithm>
#include <cmath>

namespace {

struct Expected {
    Rgba colour;
    float noise;
    float alpha;
};

Expected expected_at(float s, float t, float time, float scale, float screen_height) {
    const float raw = (time * std::cos(t) - time * time * std::sin(s)) * scale;
    const float noise = raw - std::floor(raw);
    const float band = time * 50.0F;
    const float rolled = band - screen_height * std::floor(band / screen_height);
    const float alpha = 0.2F * std::cos(std::clamp(0.1F * (t - 40.0F - rolled), -1.571F, 1.571F));
    return {
        {alpha * noise, alpha * noise, (1 - alpha) * 0.4F + alpha * noise, alpha}, noise, alpha};
}

class NoSignal : public GlTest {
  protected:
    static void draw(float time, const SDL_Rect& r) {
        clear_window(window_width, window_height);
        draw_no_signal(r, window_height, time);
    }
    static SDL_Rect field() { return no_signal_rectangle(window_width, window_height); }
};

TEST_F(NoSignal, AsItsTwin) {
    const SDL_Rect r = field();
    for (const float time : {0.0F, 0.5F, 1.7F, 4.0F, 59.9F}) {
        draw(time, r);
        const Image shown = window();
        float largest = 0.0F;
        float noise_seen = 0.0F;
        for (int y = 0; y < window_height; ++y) {
            for (int x = 0; x < window_width; ++x) {
                const Rgba& found = shown.at(x, y);
                if (y < r.y || y >= r.y + r.h) {
                    EXPECT_NEAR(found.b, 0.02F, 0.002F) << "outside of the field";
                    continue;
                }
                const Expected e =
                    expected_at(static_cast<float>(x) + 0.5F, static_cast<float>(y) + 0.5F, time,
                                9876.78F / static_cast<float>(r.h), window_height);
                noise_seen = std::max(noise_seen, found.r);
                // A fraction near a whole number may turn over. Its digits dwindle with the time.
                const bool certain = e.noise > 0.1F && e.noise < 0.9F;
                const bool in_band = e.alpha > 0.001F;
                if (!certain && in_band) continue;
                largest =
                    std::max({largest, std::abs(found.r - e.colour.r),
                              std::abs(found.g - e.colour.g), std::abs(found.b - e.colour.b)});
            }
        }
        // Measured: 0.0022 at most, and 0.0164 at the last time.
        EXPECT_LE(largest, time > 10.0F ? 0.02F : 0.004F) << time;
        const float band = std::fmod(time * 50.0F, static_cast<float>(window_height)) + 40.0F;
        const bool visible = band > static_cast<float>(r.y) && band < static_cast<float>(r.y + r.h);
        if (visible && time > 0.0F) {
            EXPECT_GT(noise_seen, 0.15F) << time;
        }
    }
}

TEST_F(NoSignal, BandRollsFiftyPixelsASecond) {
    const auto brightest_row = [this](float time) {
        draw(time, field());
        const Image shown = window();
        int best = 0;
        float most = 0.0F;
        for (int y = 0; y < window_height; ++y) {
            float sum = 0.0F;
            for (int x = 0; x < window_width; ++x)
                sum += shown.at(x, y).r;
            if (y >= field().y && y < field().y + field().h && sum > most) {
                most = sum;
                best = y;
            }
        }
        return best;
    };
    EXPECT_NEAR(brightest_row(1.0F), 90, 4);
    EXPECT_NEAR(brightest_row(2.0F), 140, 4);
    EXPECT_NEAR(brightest_row(2.0F + 240.0F / 50.0F), 140, 4) << "from the top again";
}

TEST(NoSignalRectangle, LeavesASixthAboveAndBelow) {
    const SDL_Rect r = no_signal_rectangle(800, 600);
    EXPECT_EQ(r.x, 0);
    EXPECT_EQ(r.y, 100);
    EXPECT_EQ(r.w, 800);
    EXPECT_EQ(r.h, 400);
    EXPECT_EQ(no_signal_rectangle(801, 605).y, 100);
    EXPECT_EQ(no_signal_rectangle(801, 605).h, 405);
    EXPECT_EQ(no_signal_rectangle(1, 1).h, 1);
}

TEST(NoSignalTime, RunsLikeTheClockAndStartsAgainAfterWholeRolls) {
    EXPECT_EQ(no_signal_time(0, 600), 0.0F);
    EXPECT_FLOAT_EQ(no_signal_time(1500, 600), 1.5F);
    // A roll takes 12 s; five of them a minute.
    EXPECT_FLOAT_EQ(no_signal_time(59000, 600), 59.0F);
    EXPECT_NEAR(no_signal_time(61000, 600), 1.0F, 1e-4F);
    // 240 pixels: 4.8 s, thirteen of them 62.4 s.
    EXPECT_NEAR(no_signal_time(62000, 240), 62.0F, 1e-4F);
    EXPECT_NEAR(no_signal_time(63400, 240), 1.0F, 1e-4F);
    for (const Uint32 ms : {0xFFFFFFFFU, 3600000U, 1U}) {
        for (const int height : {0, 1, 240, 5000}) {
            EXPECT_GE(no_signal_time(ms, height), 0.0F);
            EXPECT_LE(no_signal_time(ms, height), 100.1F);
        }
    }
}

}  // namespace

// SPDX-License-Identifier: MIT
// Only pictures that follow each other have anything to do with each other.

#include "support/chain_fixture.h"
#include "support/pass_recorder.h"
#include "support/pictures.h"

#include <algorithm>

namespace {

constexpr int width = 40;
constexpr int height = 26;

Image film(float shift) {
    return film_like_image(width, height, shift, shift * 0.5F);
}

// How the second of two pictures stands to the first.
struct Relation {
    const char* name;
    int numbers_between;
    int seeks_between;
    bool neighbours;
};

class NeighboursTest : public ChainTest, public ::testing::WithParamInterface<Relation> {
  protected:
    // The passes of the second picture, half-way between the two.
    std::vector<std::string> passes_of_second() {
        queue(0, film(0));
        queue(1, film(1));
        slots_[0].number = 7;
        slots_[0].seeks = 2;
        slots_[1].number = 7 + GetParam().numbers_between;
        slots_[1].seeks = 2 + GetParam().seeks_between;
        show(0);
        const PassRecorder recorder;
        phase_step_ = 1;
        show(1);
        return recorder.passes();
    }

    static bool has(const std::vector<std::string>& passes, const std::string& name) {
        return std::find(passes.begin(), passes.end(), name) != passes.end();
    }
};

TEST_P(NeighboursTest, AreInterpolated) {
    set(master_settings.temporal_upscaling_factor, 1);
    for (const auto& [method, pass] :
         {std::pair{0, "temporal_upscaling/code_frag_blend"},
          {1, "temporal_upscaling/code_frag_overlapping_blocks_4nb"},
          {2, "temporal_upscaling/code_frag_overlapping_blocks_8nb"}}) {
        set(master_settings.motion_interpolation_method, method);
        phase_step_ = 0;
        const std::vector<std::string> passes = passes_of_second();
        EXPECT_EQ(has(passes, pass), GetParam().neighbours);
        EXPECT_EQ(passes.empty(), !GetParam().neighbours);
    }
}

TEST_P(NeighboursTest, ServeAsReference) {
    for (const auto& [algorithm, reference, end] :
         {std::tuple{0, "spatial_sr/code_frag_Ib", "spatial_sr/code_frag_VII"},
          {1, "spatial_denoising/code_frag_Ib", "spatial_denoising/code_frag_VII"}}) {
        set(master_settings.upscaling_algorithm, algorithm);
        set(master_settings.spatial_upscaling_factor, 1);
        phase_step_ = 0;
        const std::vector<std::string> passes = passes_of_second();
        EXPECT_EQ(has(passes, reference), GetParam().neighbours);
        EXPECT_TRUE(has(passes, end)) << "enhanced it is in any case";
    }
}

INSTANTIATE_TEST_SUITE_P(Relations, NeighboursTest,
                         ::testing::Values(Relation{"next", 1, 0, true},
                                           Relation{"one_was_skipped", 2, 0, false},
                                           Relation{"same_again", 0, 0, false},
                                           Relation{"an_older_one", -1, 0, false},
                                           Relation{"a_seek_lies_between", 1, 1, false},
                                           Relation{"an_older_seek", 1, -1, false}),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace

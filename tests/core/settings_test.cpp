// SPDX-License-Identifier: MIT
#include "core/settings.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace {

struct Row {
    Value* value;
    const char* name;
    float minimum;
    float maximum;
    float initial;
    const char* unit;
    bool listed;
};

std::vector<Row> table(Settings& s) {
    return {
        {&s.brightness, "brightness", -0.5F, 0.5F, 0, "", true},
        {&s.contrast, "contrast", -2, 2, 0, "", true},
        {&s.spatial_upscaling_factor, "spatial upscaling factor", 0, 3, 0, "", true},
        {&s.upscaling_algorithm, "upscaling algorithm", 0, 1, 0, "", true},
        {&s.temporal_upscaling_factor, "temporal upscaling factor", 0, 4, 4, "", true},
        {&s.sharpening_level, "sharpening level", 0, 1, 0, "", true},
        {&s.denoising_level, "denoising level", 0, 60, 20, "", true},
        {&s.spatial_zoom, "spatial zoom", 0, 4, 0, "", true},
        {&s.vsync, "vsync", 0, 2, 2, "", true},
        {&s.status, "status", 0, 1, 0, "", true},
        {&s.demo_mode, "demo mode", 0, 1, 0, "", true},
        {&s.show_original, "show original", 0, 1, 0, "", false},
        {&s.motion_interpolation_method, "motion interpolation method", 0, 2, 1, "", true},
        {&s.offload_decoding, "offload decoding tasks to GPU", 0, 1, 1, "", true},
        {&s.inloop_deblocking, "h264/mpeg4 inloop deblocking filter", 0, 1, 1, "", true},
        {&s.recursive_filtering_threshold, "recursive filtering threshold", 0, 40, 1, "", false},
        {&s.volume, "volume", -40, 10, 0, "dB", true},
        {&s.balance, "balance", -1, 1, 0, "", true},
        {&s.eq_low, "EQlow", -40, 10, 0, "dB", true},
        {&s.eq_mid, "EQmid", -40, 10, 0, "dB", true},
        {&s.eq_high, "EQhigh", -40, 10, 0, "dB", true},
        {&s.stereo_enhancer, "stereo enhancer", 0, 1, 0.5F, "", true},
        {&s.audio_dnr_level, "audio DNR level", 0, 1024, 0, "", true},
        {&s.audio_latency, "audio latency", -0.5F, 0.5F, 0, "s", true},
    };
}

TEST(Settings, TableIsExact) {
    Settings settings;
    const auto rows = table(settings);
    ASSERT_EQ(rows.size(), 24U);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const Row& row = rows[i];
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.value->name(), row.name);
        EXPECT_EQ(row.value->minimum(), row.minimum);
        EXPECT_EQ(row.value->maximum(), row.maximum);
        EXPECT_EQ(row.value->default_value(), row.initial);
        EXPECT_EQ(row.value->getValue(), row.initial);
        EXPECT_EQ(row.value->unit(), row.unit);
        EXPECT_EQ(row.value->step(), 0.0001F);
        EXPECT_EQ(row.value->references(), row.listed ? 1 : 0);
        if (i > 0) {
            EXPECT_LT(rows[i - 1].value, row.value) << "members stand in this order";
        }
    }
}

TEST(Settings, ListHoldsTwentyTwoSnapshotsInTheirOwnOrder) {
    Settings settings;
    const std::vector<std::string> names = {"brightness",
                                            "contrast",
                                            "spatial upscaling factor",
                                            "upscaling algorithm",
                                            "temporal upscaling factor",
                                            "denoising level",
                                            "sharpening level",
                                            "spatial zoom",
                                            "vsync",
                                            "status",
                                            "demo mode",
                                            "motion interpolation method",
                                            "offload decoding tasks to GPU",
                                            "h264/mpeg4 inloop deblocking filter",
                                            "volume",
                                            "balance",
                                            "EQlow",
                                            "EQmid",
                                            "EQhigh",
                                            "stereo enhancer",
                                            "audio DNR level",
                                            "audio latency"};
    ASSERT_EQ(settings.list().size(), names.size());
    for (std::size_t i = 0; i < names.size(); ++i)
        EXPECT_EQ(settings.list()[i].name(), names[i]);

    settings.volume.setValue(5);
    for (const Value& value : settings.list()) {
        EXPECT_EQ(value.getValue(), value.default_value()) << "a snapshot does not follow";
    }
}

TEST(Settings, NoReferenceCanDestroyAMember) {
    Settings settings;
    {
        object_ref<Value> bound(&settings.volume);
        EXPECT_EQ(settings.volume.references(), 2);
    }
    EXPECT_EQ(settings.volume.references(), 1);
}

TEST(Settings, GlobalTableStartsFromItsDefaults) {
    for (const Row& row : table(master_settings)) {
        EXPECT_EQ(row.value->getValue(), row.initial) << row.name;
    }
}

TEST(Value, ClampsToItsBounds) {
    Value value("v", -2, 3, 1);
    EXPECT_EQ(value.setValue(-5).getValue(), -2.0F);
    EXPECT_EQ(value.setValue(99).getValue(), -2.0F + 0.0001F * 50000.0F);
    EXPECT_EQ(value.setValue(std::numeric_limits<float>::infinity()).getValue(),
              -2.0F + 0.0001F * 50000.0F);
    EXPECT_EQ(value.setValue(std::numeric_limits<float>::quiet_NaN()).getValue(), -2.0F);
}

TEST(Value, RoundsToStepsInSinglePrecision) {
    Settings settings;
    EXPECT_EQ(settings.stereo_enhancer.setValue(0.3F).getValue(), 0.0001F * 3000.0F);
    EXPECT_EQ(settings.stereo_enhancer.setValue(0.30004F).getValue(), 0.0001F * 3000.0F);
    EXPECT_EQ(settings.stereo_enhancer.setValue(0.30006F).getValue(), 0.0001F * 3001.0F);
    EXPECT_EQ(settings.volume.setValue(0).getValue(), -40.0F + 0.0001F * 400000.0F);
}

TEST(Value, InitialValueIsNeitherClampedNorRounded) {
    const Value value("v", 0, 1, 7.00005F);
    EXPECT_EQ(value.getValue(), 7.00005F);
    EXPECT_EQ(value.default_value(), 7.00005F);
}

TEST(Value, SetValueChains) {
    Value value("v", 0, 1, 0);
    EXPECT_EQ(&value.setValue(1), &value);
}

TEST(Value, NormalisesTheGivenNumber) {
    Value value("v", -40, 10, 0);
    EXPECT_EQ(value.getNormalizedValue(-40), 0.0F);
    EXPECT_EQ(value.getNormalizedValue(10), 1.0F);
    EXPECT_EQ(value.getNormalizedValue(-15), 0.5F);
    EXPECT_EQ(value.fromNormalizedValue(1), 10.0F);
    EXPECT_EQ(value.fromNormalizedValue(0.5F), -15.0F);
    EXPECT_EQ(value.getValue(), 0.0F) << "neither stores anything";
}

TEST(Value, EqualBoundsNormaliseToZero) {
    const Value value("position", 0, 0, 0);
    EXPECT_EQ(value.getNormalizedValue(0), 0.0F);
    EXPECT_EQ(value.getNormalizedValue(5), 0.0F);
}

TEST(Value, ReadsAsFlagAndAsInteger) {
    Value value("v", -2, 2, 0.5F);
    EXPECT_FALSE(value.toBool()) << "exactly a half is false";
    EXPECT_TRUE(value.setValue(0.5001F).toBool());
    EXPECT_EQ(value.setValue(1.5F).toInt(), 2);
    EXPECT_EQ(Value("v", -2, 2, -0.7F).toInt(), 0);
    EXPECT_EQ(master_settings.vsync.toInt(), 2);
}

TEST(Value, CopyTakesEverythingAndTheCount) {
    Value value("name", -1, 1, 0.5F, "dB");
    value.setValue(0.25F);
    value.addref();
    const Value copy(value);
    EXPECT_EQ(copy.name(), "name");
    EXPECT_EQ(copy.unit(), "dB");
    EXPECT_EQ(copy.minimum(), -1.0F);
    EXPECT_EQ(copy.maximum(), 1.0F);
    EXPECT_EQ(copy.default_value(), 0.5F);
    EXPECT_EQ(copy.getValue(), value.getValue());
    EXPECT_EQ(copy.references(), 1);
    Value assigned("x", 0, 0, 0);
    assigned = value;
    EXPECT_EQ(assigned.name(), "name");
    EXPECT_EQ(assigned.references(), 1);
}

}  // namespace

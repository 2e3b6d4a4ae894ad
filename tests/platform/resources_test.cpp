// SPDX-License-Identifier: MIT
#include "platform/resources.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>

namespace {

TEST(Resources, TheDefaultFontIsCompiledIn) {
    const unsigned char* data = nullptr;
    int size = 0;
    ::testing::internal::CaptureStdout();
    load_resource("GLF", "DEFAULT", &data, &size);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
    ASSERT_EQ(size, 133400);
    int header[5];
    std::memcpy(header, data, sizeof header);
    EXPECT_EQ(header[1], 256);
    EXPECT_EQ(header[2], 256);
    EXPECT_EQ(header[3], 32);
    EXPECT_EQ(header[4], 127);
}

TEST(Resources, BothNamesHaveToFit) {
    for (const auto& [category, identifier] :
         {std::pair{"GLF", "OTHER"}, std::pair{"GIF", "DEFAULT"}, std::pair{"glf", "default"}}) {
        const unsigned char* data = nullptr;
        int size = 99;
        ::testing::internal::CaptureStdout();
        load_resource(category, identifier, &data, &size);
        EXPECT_EQ(
            ::testing::internal::GetCapturedStdout(),
            std::string("Query for resource CATEGORY=") + category + " ID=" + identifier + "\n");
        EXPECT_EQ(data, nullptr);
        EXPECT_EQ(size, 0);
    }
}

TEST(Resources, UnknownOnesArePrinted) {
    const unsigned char byte = 7;
    const unsigned char* data = &byte;
    int size = 99;
    ::testing::internal::CaptureStdout();
    load_resource("GIF", "LOGO", &data, &size);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(),
              "Query for resource CATEGORY=GIF ID=LOGO\n");
    EXPECT_EQ(data, nullptr);
    EXPECT_EQ(size, 0);
}

}  // namespace

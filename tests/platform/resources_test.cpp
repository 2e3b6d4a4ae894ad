// SPDX-License-Identifier: MIT
#include "platform/resources.h"

#include <gtest/gtest.h>

namespace {

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

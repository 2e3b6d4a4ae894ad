// SPDX-License-Identifier: MIT
#pragma once

#include "enhance/options.h"

#include <cstdio>

/// Enhances the film as the options say. Progress is written to `progress` where that is not null.
/// Failures throw `EnhanceError`; then no film goes by the name of the output.
void enhance_film(const EnhanceOptions& options, std::FILE* progress);

/// The program: returns its exit status, 0 or 1.
int enhance_main(int argc, char** argv);

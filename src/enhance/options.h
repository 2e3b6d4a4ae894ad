// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

/// Spatial filters: the values of the setting "upscaling algorithm".
enum class Algorithm { super_resolution = 0, denoise = 1 };

/// Ways to make pictures between two pictures: the values of the setting "motion interpolation
/// method".
enum class Method { blend = 0, four_neighbours = 1, eight_neighbours = 2 };

/// What `vyx-enhance` is asked to do. As constructed it changes nothing.
struct EnhanceOptions {
    std::string input;
    std::string output;
    int spatial = 1;   ///< size of the result over the input's, 1 to 4
    int temporal = 1;  ///< pictures of the result per picture of the input, 1 to 5
    Algorithm algorithm = Algorithm::super_resolution;
    Method method = Method::four_neighbours;
    float denoising_level = 20.0F;  ///< 0 to 60
    float sharpening_level = 0.0F;  ///< 0 to 1
    bool demo = false;              ///< the left half stays as it was
    long pictures = -1;             ///< how many pictures of the input to take, -1 for all
    bool help = false;              ///< only explain the options
};

/// Reads the arguments behind the program's name. On failure `error` tells what is wrong with them,
/// in one sentence without a full stop; it is empty otherwise.
EnhanceOptions parse_options(const std::vector<std::string>& arguments, std::string& error);

/// What `--help` prints.
const char* options_help();

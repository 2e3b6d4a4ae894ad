// SPDX-License-Identifier: MIT
#pragma once

#include <stdexcept>

/// Why a film cannot be enhanced: one sentence for the user that names what failed, without a full
/// stop.
class EnhanceError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

/// What a handle of the interface stands for.
class VYX_BaseClass {
  public:
    static constexpr int decoder_kind = 0;
    static constexpr int encoder_kind = 1;

    explicit VYX_BaseClass(int kind) : kind_(kind) {}
    virtual ~VYX_BaseClass() = default;
    VYX_BaseClass(const VYX_BaseClass&) = delete;
    VYX_BaseClass& operator=(const VYX_BaseClass&) = delete;

    int kind() const { return kind_; }

  private:
    std::int32_t kind_;
};

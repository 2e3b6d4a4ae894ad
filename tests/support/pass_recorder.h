// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

/// Writes down which programs are drawn with while it exists, by their file:
/// "spatial_sr/code_frag_II". One at a time.
class PassRecorder {
  public:
    PassRecorder();
    ~PassRecorder();
    PassRecorder(const PassRecorder&) = delete;
    PassRecorder& operator=(const PassRecorder&) = delete;

    const std::vector<std::string>& passes() const { return passes_; }
    void clear() { passes_.clear(); }

  private:
    static void use_program(unsigned program);

    std::vector<std::string> passes_;
};

/// How many textures were ever made, those that are gone again included.
long textures_made();

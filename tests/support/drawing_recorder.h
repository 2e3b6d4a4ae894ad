// SPDX-License-Identifier: MIT
#pragma once

#include "gui/geometry.h"
#include "gui/graphics.h"

#include <string>
#include <vector>

/// One thing that was drawn, in the coordinates that held when recording began.
struct Drawn {
    enum Kind { fill, outline, line, text };

    Kind kind;
    std::vector<pointf> points;  ///< corners; of text the left end of its bottom edge
    gl_color color;              ///< alpha as it goes to GL
    std::string string;
    float scale = 0.0F;    ///< of text, as given
    bool clipped = false;  ///< `clip` holds
    rectf clip;

    /// The smallest rectangle around the points.
    rectf box() const;
};

/// Notes what is drawn during its life instead of drawing it; needs no context. One at a time.
///
/// Calls into the drawing functions from other files are caught by the linker, so that a program
/// that uses this has to link `vyx_test_gui`.
class DrawingRecorder {
  public:
    /// `draw_too`: what is noted is drawn as well.
    explicit DrawingRecorder(bool draw_too = false);
    ~DrawingRecorder();
    DrawingRecorder(const DrawingRecorder&) = delete;
    DrawingRecorder& operator=(const DrawingRecorder&) = delete;

    std::vector<Drawn> of_kind(Drawn::Kind kind) const;
    /// The only piece of text that reads `string`; fails the test where there is none.
    Drawn text(const std::string& string) const;
    /// Clip rectangles and transforms that were entered and not left.
    int open_clips() const { return static_cast<int>(clips.size()); }
    int open_transforms() const { return static_cast<int>(stack.size()); }

    std::vector<Drawn> drawn;

    // What the caught functions need.
    struct Transform {
        pointf scale{1.0F, 1.0F};
        pointf origin;
        pointf operator()(pointf p) const {
            return {origin.x + scale.x * p.x, origin.y + scale.y * p.y};
        }
        rectf operator()(rectf r) const;
    };
    void note(Drawn::Kind kind, std::vector<pointf> points);

    bool draw_too;
    Transform transform;
    std::vector<Transform> stack;
    std::vector<rectf> clips;
};

/// Display lists made, replayed and deleted since the program began.
struct ListCounts {
    int named = 0;
    int recorded = 0;
    int replayed = 0;
    int deleted = 0;
    unsigned mode = 0;  ///< of the last recording
};
extern ListCounts list_counts;

// SPDX-License-Identifier: MIT
#pragma once

#include "core/object.h"
#include "gui/geometry.h"

/// The look that widgets share. Colours are packed, 0xAARRGGBB. [main]
class WidgetStyle : public object {
  public:
    pointf corner_radius{6.0F, 6.0F};  ///< of every rounded rectangle
    pointf knob_size{12.0F, 12.0F};    ///< x is the width of a slider's knob
    float small_text_scale = 0.5F;     ///< of all text but titles
    float text_scale = 0.65F;          ///< of the titles of forms
    unsigned text_color = 0xFFFFFFFFU;
    unsigned second_text_color = text_color;  ///< of text on highlighted items
    unsigned highlight_color = 0xEF800000U;
    unsigned light_gray = 0xFFC0C0C0U;

    /// The next four choose the brush of what is filled, or the pen of what is outlined, next.
    virtual void SetDefaultBackground();
    virtual void SetHighlightBackground();
    virtual void SetGrayedBackground();
    virtual void SetDefaultBorder();

    /// With the style's radius at all corners.
    virtual void DrawRoundedRect(float x, float y, float w, float h);
    virtual void DrawRoundedRect(rectf r);
    virtual void FillRoundedRect(float x, float y, float w, float h);
    virtual void FillRoundedRect(rectf r);
};

/// The one style; every new widget starts with it.
extern object_ref<WidgetStyle> defaultStyle;

// SPDX-License-Identifier: MIT
#include "core/settings.h"
#include "gallery/sheet.h"
#include "gallery/sheets.h"

#include "gui/forms_rig.h"

#include <functional>

namespace {

// Forms are drawn one after the other, each in a state of the player of its own.
class Exhibition {
  public:
    explicit Exhibition(Sheet& sheet) : sheet_(sheet) {}

    void add(FormWidget& form, float x, float y, const std::string& text,
             std::function<void()> prepare) {
        sheet_.add(x, y, {form.bounds.w, form.bounds.h}, 1.0F, text,
                   [this, &form, prepare = std::move(prepare)] {
                       prepare();
                       rig.open(form);
                       form.invalidate();
                       form.draw();
                   });
    }

    FormsRig rig;

  private:
    Sheet& sheet_;
};

void add_settings(Exhibition& all) {
    FormsRig& rig = all.rig;
    all.add(*formVideoSettings, 30, 70, "1920 x 1080, textures up to 4096", [&rig] {
        rig.player.width = 1920;
        rig.player.height = 1080;
        rig.player.largest_texture_ = 4096;
    });
    all.add(*formAudioSettings, 590, 70, "", [] {
        master_settings.eq_low.setValue(-12.5F);
        master_settings.audio_latency.setValue(0.25F);
    });
    all.add(*formVideoAdvancedSettings, 30, 440, "", [] {});
}

void add_menus(Exhibition& all) {
    FormsRig& rig = all.rig;
    all.add(*formMenu, 590, 490, "at rest", [] {});
    all.add(*formMenu, 790, 490, "full screen, icons in motion", [&rig] {
        rig.player.fullscreen = true;
        formMenu->phases = {1.5F, 15, 2, 0.5F};
    });
}

void add_bars(Exhibition& all) {
    FormsRig& rig = all.rig;
    const auto point_at = [&rig](const WidgetBase& widget) { rig.mouse = FormsRig::place(widget); };
    rig.player.duration_ = 100;
    all.add(*formTransportBar, 30, 780, "playing, the pointer on the position", [&rig, point_at] {
        rig.player.position_ = 40;
        point_at(*formTransportBar->position);
    });
    all.add(*formTransportBar, 30, 900, "paused, the pointer on the volume", [&rig, point_at] {
        rig.player.paused = true;
        point_at(*formTransportBar->volume);
    });
    all.add(*formTransportBar, 590, 580, "silent", [&rig] {
        rig.player.paused = false;
        master_settings.volume.setValue(-40);
        rig.mouse = {0, 0};
    });
    all.add(*formTransportBar, 590, 680, "no file", [&rig] { rig.player.open_ = false; });
}

}  // namespace

PngPicture form_sheet() {
    Sheet sheet(1120, 1000);
    sheet.heading(30, 20, "Forms");
    Exhibition all(sheet);
    add_settings(all);
    add_menus(all);
    add_bars(all);
    return sheet.picture();
}

// SPDX-License-Identifier: MIT
#pragma once

#include "support/gui_world.h"

#include <gtest/gtest.h>

#include <vector>

/// A form that notes the events it gets before it does with them what forms do.
class ListeningForm : public FormWidget {
  public:
    void onevent(EventArgs& event) override {
        events.push_back(event);
        FormWidget::onevent(event);
    }

    std::vector<EventTypes::Action> actions() const {
        std::vector<EventTypes::Action> all;
        for (const EventArgs& event : events)
            all.push_back(event.action);
        return all;
    }

    std::vector<EventArgs> events;
};

/// A test with a world in which there is one open form of 400 x 300 in the middle of the window.
class GuiTest : public ::testing::Test {
  protected:
    GuiTest() {
        form->title = "Test";
        form->bounds = {-200.0F, -150.0F, 400.0F, 300.0F};
        gui.add(form);
    }

    GuiWorld world;
    object_ref<ListeningForm> form = new ListeningForm;
};

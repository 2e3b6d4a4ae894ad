// SPDX-License-Identifier: MIT
// What a form draws, and when it draws at all.
#include "gui/form_widget.h"
#include "gui/gl_font.h"
#include "support/drawing_recorder.h"
#include "support/gui_test.h"

#include <GL/glew.h>
#include <SDL.h>

#include <utility>

namespace {

// Fills its bounds and counts how often.
class Plate : public WidgetBase {
  public:
    void draw() override {
        setbrushcolor(0xFFFF0000U);
        fillrectanglef(0, 0, bounds.w, bounds.h);
        ++drawings;
    }
    int drawings = 0;
};

// A driver that cannot draw into textures, whichever an earlier test of this process has loaded:
// elsewhere the list is recorded once more, as a picture.
class WithoutFramebuffers {
  public:
    WithoutFramebuffers() { __GLEW_EXT_framebuffer_object = GL_FALSE; }
    ~WithoutFramebuffers() { __GLEW_EXT_framebuffer_object = before_; }
    WithoutFramebuffers(const WithoutFramebuffers&) = delete;
    WithoutFramebuffers& operator=(const WithoutFramebuffers&) = delete;

  private:
    const GLboolean before_ = __GLEW_EXT_framebuffer_object;
};

class FormDrawingTest : public GuiTest {
  protected:
    FormDrawingTest() {
        plate->bounds = {50, 100, 20, 10};
        form->add(plate);
    }

    // The form as it is drawn, in its own coordinates.
    std::vector<Drawn> drawn() {
        DrawingRecorder recorder;
        form->dirty = true;
        form->draw();
        EXPECT_EQ(recorder.open_clips(), 0);
        EXPECT_EQ(recorder.open_transforms(), 0);
        return recorder.drawn;
    }

    object_ref<Plate> plate = new Plate;
};

TEST_F(FormDrawingTest, IsRecordedOnceAndReplayedWhileNothingChanges) {
    const WithoutFramebuffers lists_only;
    const DrawingRecorder recorder;
    const ListCounts before = list_counts;
    gui.draw();
    EXPECT_EQ(list_counts.recorded, before.recorded + 1);
    EXPECT_EQ(list_counts.mode, unsigned(GL_COMPILE_AND_EXECUTE)) << "seen in this frame already";
    EXPECT_EQ(list_counts.replayed, before.replayed);
    EXPECT_FALSE(form->dirty);
    for (int i = 0; i < 3; ++i)
        gui.draw();
    EXPECT_EQ(list_counts.recorded, before.recorded + 1);
    EXPECT_EQ(list_counts.replayed, before.replayed + 3);
    EXPECT_EQ(plate->drawings, 1);
    plate->invalidate();
    gui.draw();
    EXPECT_EQ(list_counts.recorded, before.recorded + 2);
    EXPECT_EQ(list_counts.named, before.named + 1) << "into the same list";
    EXPECT_EQ(plate->drawings, 2);
}

TEST_F(FormDrawingTest, HasNoListBeforeItIsDrawn) {
    const DrawingRecorder recorder;
    const ListCounts before = list_counts;
    const object_ref<FormWidget> fresh(new FormWidget);
    EXPECT_EQ(list_counts.named, before.named) << "the first forms are made before the context";
    EXPECT_EQ(fresh->display_list, 0U);
    fresh->draw();
    EXPECT_EQ(list_counts.named, before.named + 1);
    EXPECT_NE(fresh->display_list, 0U);
}

TEST_F(FormDrawingTest, ItsListIsLeftAloneOnceTheDisplayIsClosed) {
    // Closing the window here would take it from every later test of the process. ctest gives each
    // test a process of its own, so that this one runs there.
    if (SDL_WasInit(SDL_INIT_VIDEO))
        GTEST_SKIP() << "needs a process without a window, as ctest gives it";
    const DrawingRecorder recorder;
    gui.draw();
    ASSERT_NE(form->display_list, 0U);
    const ListCounts before = list_counts;
    form = nullptr;
    gui.children.clear();
    EXPECT_EQ(list_counts.deleted, before.deleted) << "there is no window";
}

TEST_F(FormDrawingTest, EveryFrameOfAnAnimationIsRecorded) {
    const DrawingRecorder recorder;
    form->hide();
    for (int i = 0; i < 5; ++i) {
        world.pass(0.05, 0.05);
        gui.draw();
    }
    EXPECT_EQ(plate->drawings, 5);
    world.pass(0.5);
    gui.draw();
    EXPECT_EQ(plate->drawings, 5) << "hidden";
}

TEST_F(FormDrawingTest, AFormWithoutAListDrawsEveryTime) {
    form->draws_without_list = true;
    const DrawingRecorder recorder;
    const ListCounts before = list_counts;
    gui.draw();
    gui.draw();
    EXPECT_EQ(plate->drawings, 2);
    EXPECT_EQ(list_counts.recorded, before.recorded);
    EXPECT_EQ(list_counts.replayed, before.replayed);
}

TEST_F(FormDrawingTest, TheFrameIsAFillAndADoubleBorder) {
    const auto all = drawn();
    ASSERT_GE(all.size(), 3U);
    EXPECT_EQ(all[0].kind, Drawn::fill);
    EXPECT_EQ(all[0].color.a, 112.0F / 255.0F);
    EXPECT_NEAR(all[0].box().w, 400.0F, 1e-3);
    EXPECT_NEAR(all[0].box().h, 300.0F, 1e-3);
    EXPECT_EQ(all[1].kind, Drawn::outline);
    EXPECT_NEAR(all[1].box().w, 400.0F, 1e-3);
    EXPECT_EQ(all[1].color.a, 128.0F / 255.0F);
    EXPECT_EQ(all[2].kind, Drawn::outline);
    EXPECT_NEAR(all[2].box().x, 2.0F, 1e-3);
    EXPECT_NEAR(all[2].box().y, 2.0F, 1e-3);
    EXPECT_NEAR(all[2].box().w, 396.0F, 1e-3);
    EXPECT_NEAR(all[2].box().h, 296.0F, 1e-3);
}

TEST_F(FormDrawingTest, TheTitleStandsInTheMiddleOfItsBar) {
    const auto all = drawn();
    ASSERT_EQ(all.size(), 6U);
    const rectf bar = form->get_titlerect();
    EXPECT_EQ(all[3].kind, Drawn::fill);
    EXPECT_EQ(all[3].box().x, bar.x);
    EXPECT_EQ(all[3].box().h, bar.h);
    EXPECT_FLOAT_EQ(all[3].color.r, 0x28 / 255.0F);
    EXPECT_FLOAT_EQ(all[3].color.a, 128.0F / 255.0F);
    std::pair<int, int> size;
    default_font.GetStringSize("<Test>", &size);
    EXPECT_EQ(all[4].kind, Drawn::text);
    EXPECT_EQ(all[4].string, "<Test>");
    EXPECT_EQ(all[4].scale, 0.65F);
    EXPECT_FLOAT_EQ(all[4].points[0].x, bar.x + (bar.w - float(size.first) * 0.65F) / 2.0F);
    EXPECT_FLOAT_EQ(all[4].points[0].y, bar.y + bar.h);
    EXPECT_EQ(all[4].color.r, 1.0F);
    EXPECT_EQ(all[4].clip.w, 400.0F);
    EXPECT_EQ(all[4].clip.h, 300.0F);
    EXPECT_FALSE(all[5].clipped) << "children are not";
}

TEST_F(FormDrawingTest, TheBarIsRedWhileDragged) {
    form->dragging = true;
    EXPECT_FLOAT_EQ(drawn()[3].color.r, 1.0F);
    EXPECT_FLOAT_EQ(drawn()[3].color.a, 128.0F / 255.0F);
}

TEST_F(FormDrawingTest, FrameAndTitleCanBeLeftOut) {
    form->has_frame = false;
    EXPECT_EQ(drawn().size(), 3U);
    form->has_title_bar = false;
    const auto all = drawn();
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(all[0].box().x, 50.0F);
    EXPECT_EQ(all[0].box().y, 100.0F);
}

TEST_F(FormDrawingTest, OpacityCountsForEverythingAndIsZeroAfterwards) {
    form->opacity = 0.5F;
    for (const Drawn& d : drawn()) {
        EXPECT_GT(d.color.a, 0.0F);
        EXPECT_LE(d.color.a, 0.5F);
    }
    EXPECT_EQ(opacity, 0.0F);
}

TEST_F(FormDrawingTest, FrameAndChildrenZoomAboutTheSamePoint) {
    form->scale = {0.5F, 0.5F};
    form->scaling_center = {-200, -150};
    auto all = drawn();
    EXPECT_NEAR(all[0].box().x, 0.0F, 1e-3) << "about the corner";
    EXPECT_NEAR(all[0].box().w, 200.0F, 1e-3);
    EXPECT_FLOAT_EQ(all.back().box().x, 25.0F) << "children once, not twice";
    EXPECT_FLOAT_EQ(all.back().box().y, 50.0F);
    EXPECT_FLOAT_EQ(all.back().box().w, 10.0F);
    form->scaling_center = {};
    all = drawn();
    EXPECT_NEAR(all[0].box().x, 100.0F, 1e-3);
    EXPECT_NEAR(all[0].box().y, 75.0F, 1e-3);
}

TEST_F(FormDrawingTest, AnOffsetMovesTheChildrenButNotFrameAndTitle) {
    const auto still = drawn();
    form->offset = {30, -20};
    const auto moved = drawn();
    ASSERT_EQ(moved.size(), still.size());
    for (std::size_t i = 0; i < moved.size(); ++i) {
        const bool child = i + 1 == moved.size();
        ASSERT_EQ(moved[i].points.size(), still[i].points.size()) << i;
        for (std::size_t j = 0; j < moved[i].points.size(); ++j) {
            const pointf way = moved[i].points[j] - still[i].points[j];
            EXPECT_NEAR(way.x, child ? 30.0F : 0.0F, 1e-3) << i;
            EXPECT_NEAR(way.y, child ? -20.0F : 0.0F, 1e-3) << i;
        }
        EXPECT_EQ(moved[i].clip.x, still[i].clip.x) << i;
        EXPECT_EQ(moved[i].clip.y, still[i].clip.y) << i;
    }
}

// Whatever is going on, letters lie within the clip rectangle that holds for them.
TEST_F(FormDrawingTest, TextIsNeverClippedAway) {
    form->addLabel(10, 50, 140, 24, "A label");
    const object_ref<ButtonWidget> button(new ButtonWidget);
    button->bounds = {200, 50, 120, 24};
    button->text = "A button";
    form->add(button);
    const auto check = [&](const char* when) {
        DrawingRecorder recorder;
        form->dirty = true;
        gui.draw();
        const auto texts = recorder.of_kind(Drawn::text);
        ASSERT_EQ(texts.size(), 3U) << when;
        for (const Drawn& text : texts) {
            std::pair<int, int> size;
            default_font.GetStringSize(text.string, &size);
            const float zoom = gui.scale.x * form->scale.x * text.scale;
            ASSERT_TRUE(text.clipped) << when;
            EXPECT_GE(text.points[0].x, text.clip.x - 0.01F) << when << text.string;
            EXPECT_LE(text.points[0].x + zoom * float(size.first),
                      text.clip.x + text.clip.w + 0.01F)
                << when << text.string;
            EXPECT_LE(text.points[0].y, text.clip.y + text.clip.h + 0.01F) << when << text.string;
            EXPECT_GE(text.points[0].y - zoom * float(size.second), text.clip.y - 0.01F)
                << when << text.string;
        }
    };
    check("open");
    world.press(in_window(form, {100, 15}));
    world.move({37, 41});
    check("dragged");
    world.release({37, 41});
    form->hide();
    for (int i = 0; i < 7; ++i) {
        world.pass(0.05, 0.05);
        check("closing");
    }
    world.pass(0.5);
    form->show();
    for (int i = 0; i < 9; ++i) {
        check("opening");
        world.pass(0.05, 0.05);
    }
    GuiWorld::resize(1920, 1080);
    check("larger");
}

}  // namespace

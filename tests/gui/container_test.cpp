// SPDX-License-Identifier: MIT
#include "gui/widget_container.h"

#include "support/drawing_recorder.h"
#include "support/gui_test.h"

#include <string>
#include <vector>

namespace {

std::vector<std::string> calls;

// Says what reaches it.
class Talker : public WidgetBase {
  public:
    Talker(std::string name, rectf r, bool answer = true)
        : name_(std::move(name)), answer_(answer) {
        bounds = r;
    }
    void draw() override { calls.push_back(name_ + " draw"); }
    bool mousedown(pointf p, int button) override { return say("down", p, button); }
    bool mousemove(pointf p, int buttons) override { return say("move", p, buttons); }
    bool mouseup(pointf p, int button) override { return say("up", p, button); }
    void tick(double dt) override { calls.push_back(name_ + " tick " + std::to_string(dt)); }
    WidgetBase* hittest(pointf /*p*/) override { return answer_ ? &inner : nullptr; }

    WidgetBase inner;

  private:
    bool say(const char* what, pointf p, int button) {
        calls.push_back(name_ + " " + what + " " + std::to_string(int(p.x)) + "," +
                        std::to_string(int(p.y)) + " " + std::to_string(button));
        return answer_;
    }

    std::string name_;
    bool answer_;
};

using Calls = std::vector<std::string>;

class ContainerTest : public ::testing::Test {
  protected:
    ContainerTest() {
        calls.clear();
        box->bounds = {0, 0, 200, 200};
    }

    object_ref<Talker> add(const char* name, rectf r, bool answer = true) {
        object_ref<Talker> talker(new Talker(name, r, answer));
        box->add(talker);
        return talker;
    }

    static Calls taken() {
        Calls result;
        result.swap(calls);
        return result;
    }

    GuiWorld world;
    object_ref<WidgetContainer> box = new WidgetContainer;
};

TEST_F(ContainerTest, AddingKeepsTheChildAliveAndMakesItsParent) {
    EXPECT_TRUE(box->ticking);
    const object_ref<Talker> a = add("a", {0, 0, 10, 10});
    EXPECT_EQ(a->references(), 2);
    EXPECT_EQ(a->parent, static_cast<WidgetContainer*>(box));
    box->add(nullptr);
    EXPECT_EQ(box->children.size(), 1U);
}

TEST_F(ContainerTest, RemovingLeavesTheChildInPlace) {
    const object_ref<Talker> a = add("a", {0, 0, 10, 10});
    box->remove(a);
    ASSERT_EQ(box->children.size(), 1U);
    EXPECT_EQ(a->parent, static_cast<WidgetContainer*>(box));
}

TEST_F(ContainerTest, LabelsOutliveTheirContainer) {
    TextLabelWidget* label = box->addLabel(1, 2, 3, 4, "text");
    ASSERT_EQ(box->children.size(), 1U);
    EXPECT_EQ(static_cast<WidgetBase*>(box->children[0]), label);
    EXPECT_EQ(label->references(), 2);
    EXPECT_EQ(label->parent, static_cast<WidgetContainer*>(box));
    EXPECT_EQ(label->text, "text");
    EXPECT_EQ(label->bounds.y, 2.0F);
    EXPECT_EQ(label->bounds.h, 4.0F);
    box = nullptr;
    EXPECT_EQ(label->references(), 1);
    EXPECT_EQ(label->text, "text");
}

TEST_F(ContainerTest, IsVisibleWhereAnyChildIs) {
    EXPECT_FALSE(box->anyVisible());
    const object_ref<Talker> a = add("a", {0, 0, 10, 10});
    const object_ref<Talker> b = add("b", {0, 0, 10, 10});
    EXPECT_TRUE(box->anyVisible());
    a->visible = false;
    EXPECT_TRUE(box->anyVisible());
    b->visible = false;
    EXPECT_FALSE(box->anyVisible());
}

TEST_F(ContainerTest, DrawsVisibleChildrenInOrder) {
    add("a", {0, 0, 10, 10});
    add("b", {0, 0, 10, 10})->visible = false;
    add("c", {0, 0, 10, 10});
    const DrawingRecorder recorder;
    box->draw();
    EXPECT_EQ(taken(), (Calls{"a draw", "c draw"}));
    EXPECT_EQ(recorder.open_transforms(), 0);
}

// Fills its bounds.
class Plate : public WidgetBase {
  public:
    void draw() override { fillrectanglef(0, 0, bounds.w, bounds.h); }
};

TEST_F(ContainerTest, ZoomsAboutItsScalingCentreAndMovesByItsOffset) {
    const object_ref<Plate> plate(new Plate);
    plate->bounds = {10, 20, 30, 40};
    box->add(plate);
    box->bounds = {500, 500, 100, 100};
    box->offset = {3, 4};
    box->scale = {2, 0.5F};
    box->scaling_center = {-50, -30};
    DrawingRecorder recorder;
    box->draw();
    ASSERT_EQ(recorder.drawn.size(), 1U);
    const rectf r = recorder.drawn[0].box();
    EXPECT_FLOAT_EQ(r.x, 3.0F + 2.0F * 10.0F) << "about 0";
    EXPECT_FLOAT_EQ(r.y, 4.0F + 20.0F) << "about 20";
    EXPECT_FLOAT_EQ(r.w, 60.0F);
    EXPECT_FLOAT_EQ(r.h, 20.0F);
}

TEST_F(ContainerTest, FarEdgesOfAChildDoNotReachIt) {
    add("a", {10, 20, 30, 40});
    EXPECT_FALSE(box->mousedown({40, 30}, 1));
    EXPECT_FALSE(box->mousedown({15, 60}, 1));
    EXPECT_TRUE(taken().empty());
    EXPECT_TRUE(box->mousedown({10, 20}, 1));
    EXPECT_EQ(taken(), Calls{"a down 0,0 1"});
    EXPECT_TRUE(box->mousedown({39, 59}, 1));
}

TEST_F(ContainerTest, TheLaterOfOverlappingChildrenGetsThePress) {
    const object_ref<Talker> below = add("below", {0, 0, 50, 50});
    const object_ref<Talker> above = add("above", {20, 20, 50, 50}, false);
    EXPECT_TRUE(box->mousedown({30, 30}, 3)) << "whatever the child answers";
    EXPECT_EQ(taken(), Calls{"above down 10,10 3"});
    EXPECT_TRUE(above->pressed);
    EXPECT_FALSE(below->pressed);
    EXPECT_EQ(static_cast<WidgetBase*>(box->captured), above);
    box->mouseup({30, 30}, 3);
    above->visible = false;
    taken();
    box->mousedown({30, 30}, 1);
    EXPECT_EQ(taken(), Calls{"below down 30,30 1"}) << "hidden children are passed over";
}

TEST_F(ContainerTest, MovesWithoutAButtonReachTheTopmostChildAndReturnItsAnswer) {
    add("a", {0, 0, 50, 50});
    add("b", {20, 20, 50, 50}, false);
    EXPECT_TRUE(box->mousemove({5, 6}, 0));
    EXPECT_FALSE(box->mousemove({25, 26}, 0));
    EXPECT_FALSE(box->mousemove({100, 100}, 0));
    EXPECT_EQ(taken(), (Calls{"a move 5,6 0", "b move 5,6 0"}));
}

TEST_F(ContainerTest, MovesWithAButtonReachTheCapturedChildOnly) {
    add("a", {0, 0, 50, 50});
    add("b", {100, 0, 50, 50});
    EXPECT_FALSE(box->mousemove({5, 5}, 1)) << "nothing is captured";
    box->mousedown({5, 5}, 1);
    taken();
    EXPECT_TRUE(box->mousemove({120, 10}, 1));
    EXPECT_TRUE(box->mousemove({-70, 10}, 1));
    EXPECT_EQ(taken(), (Calls{"a move 120,10 1", "a move -70,10 1"}));
}

TEST_F(ContainerTest, TheReleaseGoesToTheCapturedChildAndEndsTheCapture) {
    const object_ref<Talker> a = add("a", {10, 10, 50, 50}, false);
    EXPECT_FALSE(box->mouseup({15, 15}, 1));
    box->mousedown({15, 15}, 1);
    taken();
    EXPECT_TRUE(box->mouseup({150, 150}, 1)) << "whatever the child answers";
    EXPECT_EQ(taken(), Calls{"a up 140,140 1"});
    EXPECT_FALSE(a->pressed);
    EXPECT_TRUE(box->captured.IsNull());
    EXPECT_FALSE(box->mouseup({15, 15}, 1));
}

TEST_F(ContainerTest, ASecondPressElsewhereLeavesNothingPressedBehind) {
    const object_ref<Talker> a = add("a", {0, 0, 50, 50});
    const object_ref<Talker> b = add("b", {100, 0, 50, 50});
    box->mousedown({5, 5}, 1);
    box->mousedown({105, 5}, 3);
    EXPECT_FALSE(a->pressed);
    EXPECT_TRUE(b->pressed);
    box->mouseup({105, 5}, 3);
    EXPECT_FALSE(b->pressed);
}

TEST_F(ContainerTest, PointsAreConvertedOnTheWayIn) {
    add("a", {0, 0, 50, 50});
    box->scale = {2, 2};
    box->offset = {10, 0};
    // Drawn from (10 - 100, -100) on, twice as large.
    EXPECT_TRUE(box->mousedown({-90 + 2 * 7, -100 + 2 * 9}, 1));
    box->mousemove({-90 + 2 * 8, -100 + 2 * 9}, 1);
    box->mouseup({-90 + 2 * 9, -100 + 2 * 9}, 1);
    EXPECT_EQ(taken(), (Calls{"a down 7,9 1", "a move 8,9 1", "a up 9,9 1"}));
}

TEST_F(ContainerTest, HitTestsFindChildrenNotWhatLiesInThem) {
    const object_ref<Talker> a = add("a", {0, 0, 50, 50});
    EXPECT_EQ(box->hittest({5, 5}), a);
    EXPECT_EQ(box->hittest({50, 5}), nullptr);
    const object_ref<Talker> leaf = add("leaf", {0, 0, 20, 20}, false);
    EXPECT_EQ(box->hittest({5, 5}), nullptr) << "what lies beneath is not tried";
    leaf->visible = false;
    EXPECT_EQ(box->hittest({5, 5}), a);
}

TEST_F(ContainerTest, TicksReachTheChildrenThatWantThem) {
    add("a", {})->ticking = true;
    add("b", {});
    const object_ref<Talker> c = add("c", {});
    c->ticking = true;
    c->visible = false;
    box->tick(0.25);
    EXPECT_EQ(taken(), (Calls{"a tick 0.250000", "c tick 0.250000"}));
}

TEST_F(ContainerTest, ANegativeTickIsMeasuredByTheContainer) {
    add("a", {})->ticking = true;
    box->tick(-1);  // from whenever it was before
    taken();
    world.clock += 0.5;
    box->tick(-1);
    world.clock += 0.125;
    box->tick(-1);
    world.clock -= 50;
    box->tick(-1);
    world.clock += 0.25;
    box->tick(-1);
    EXPECT_EQ(taken(),
              (Calls{"a tick 0.500000", "a tick 0.125000", "a tick 0.000000", "a tick 0.250000"}));
}

TEST_F(ContainerTest, EventsAreIgnored) {
    EventArgs event(box, EventTypes::close_request);
    box->onevent(event);
    EXPECT_TRUE(box->visible);
}

// Puts a sibling beside itself when drawn or pressed.
class Breeder : public WidgetBase {
  public:
    Breeder() { bounds = {0, 0, 10, 10}; }
    void draw() override { parent->add(new WidgetBase); }
    bool mousedown(pointf /*p*/, int /*button*/) override {
        for (int i = 0; i < 100; ++i)
            parent->add(new WidgetBase);
        return true;
    }
};

TEST_F(ContainerTest, ChildrenMayBeAddedWhileTheOthersAreVisited) {
    box->add(new Breeder);
    const DrawingRecorder recorder;
    box->draw();
    EXPECT_EQ(box->children.size(), 2U);
    EXPECT_TRUE(box->mousedown({5, 5}, 1));
    EXPECT_EQ(box->children.size(), 102U);
    EXPECT_TRUE(box->children[0]->pressed);
}

}  // namespace

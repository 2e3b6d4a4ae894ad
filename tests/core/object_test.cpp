// SPDX-License-Identifier: MIT
#include "core/object.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace {

// Counts its own destructions, and has a field that no constructor sets.
class Probe : public object {
  public:
    explicit Probe(int* destroyed) : destroyed_(destroyed) {}
    ~Probe() override { ++*destroyed_; }
    unsigned char unset[64];  // NOLINT: left to the zero-filled memory

  private:
    int* destroyed_;
};

class Shape : public object {};
class Label : public Shape {};
class Button : public Shape {};

}  // namespace

template <>
inline constexpr int conversion_references<Shape, Label> = 2;

namespace {

TEST(Object, StartsUnownedWithZeroedMemory) {
    int destroyed = 0;
    auto* probe = new Probe(&destroyed);
    EXPECT_EQ(probe->references(), 0);
    const unsigned char zero[64] = {};
    EXPECT_EQ(std::memcmp(probe->unset, zero, sizeof zero), 0);
    EXPECT_EQ(probe->release(), 0);
    EXPECT_EQ(destroyed, 1);
}

TEST(Object, AddrefAndReleaseReturnTheNewCount) {
    int destroyed = 0;
    auto* probe = new Probe(&destroyed);
    EXPECT_EQ(probe->addref(), 1);
    EXPECT_EQ(probe->addref(), 2);
    EXPECT_EQ(probe->release(), 1);
    EXPECT_EQ(destroyed, 0);
    EXPECT_EQ(probe->release(), 0);
    EXPECT_EQ(destroyed, 1);
}

TEST(Object, ReleaseBelowZeroDestroysAndReturnsZero) {
    int destroyed = 0;
    Irefcountable* never_owned = new Probe(&destroyed);
    EXPECT_EQ(never_owned->release(), 0);
    EXPECT_EQ(destroyed, 1);
}

TEST(Object, CopyCarriesTheCountOfItsSource) {
    Shape source;
    source.addref();
    source.addref();
    Shape copy(source);
    EXPECT_EQ(copy.references(), 2);
    Shape assigned;
    assigned = source;
    EXPECT_EQ(assigned.references(), 2);
    source.addref();
    EXPECT_EQ(copy.references(), 2) << "a copy counts on its own from then on";
}

TEST(Object, QueryInterfaceFindsNothing) {
    Shape shape;
    int out = 7;
    EXPECT_EQ(shape.queryInterface(0, &out), nullptr);
    EXPECT_EQ(shape.queryInterface(~0ULL, nullptr), nullptr);
    EXPECT_EQ(out, 7);
}

TEST(ObjectRef, NullDoesNothing) {
    object_ref<Probe> none;
    EXPECT_TRUE(none.IsNull());
    EXPECT_EQ(static_cast<Probe*>(none), nullptr);
    EXPECT_EQ(none = static_cast<Probe*>(nullptr), 0);
    object_ref<Probe> copy(none);
    EXPECT_TRUE(copy.IsNull());
    EXPECT_EQ(copy = none, 0);
}

TEST(ObjectRef, EveryReferenceCountsOnce) {
    int destroyed = 0;
    auto* probe = new Probe(&destroyed);
    {
        object_ref<Probe> first(probe);
        EXPECT_EQ(probe->references(), 1);
        object_ref<Probe> second(first);
        EXPECT_EQ(probe->references(), 2);
        object_ref<Probe> third;
        EXPECT_EQ(third = second, 3);
        EXPECT_EQ(second = static_cast<Probe*>(nullptr), 0);
        EXPECT_EQ(probe->references(), 2);
    }
    EXPECT_EQ(destroyed, 1);
}

TEST(ObjectRef, AssignmentReturnsTheNewCount) {
    int destroyed = 0;
    object_ref<Probe> ref;
    auto* probe = new Probe(&destroyed);
    EXPECT_EQ(ref = probe, 1);
    object_ref<Probe> other(new Probe(&destroyed));
    EXPECT_EQ(other = ref, 2);
    EXPECT_EQ(destroyed, 1) << "the object held before is released";
}

// Writes down what happens to its count.
class Diary : public object {
  public:
    explicit Diary(std::string* text, char name) : text_(text), name_(name) {}
    int addref() override {
        *text_ += {'+', name_};
        return object::addref();
    }
    int release() override {
        *text_ += {'-', name_};
        return object::release();
    }

  private:
    std::string* text_;
    char name_;
};

TEST(ObjectRef, AssignmentReleasesBeforeItTakes) {
    std::string text;
    auto* first = new Diary(&text, 'a');
    auto* second = new Diary(&text, 'b');
    object_ref<Diary> keeper(first);
    object_ref<Diary> ref(first);
    text.clear();
    EXPECT_EQ(ref = second, 1);
    EXPECT_EQ(text, "-a+b");
    text.clear();
    EXPECT_EQ(ref = keeper, 2);
    EXPECT_EQ(text, "-b+a");
    text.clear();
    EXPECT_EQ(ref = first, 2) << "also when it stays the same";
    EXPECT_EQ(text, "-a+a");
}

TEST(ObjectRef, GrowingAListKeepsTheCountRight) {
    int destroyed = 0;
    auto* probe = new Probe(&destroyed);
    {
        std::vector<object_ref<Probe>> list;
        for (int i = 0; i < 100; ++i)
            list.push_back(object_ref<Probe>(probe));
        EXPECT_EQ(probe->references(), 100);
    }
    EXPECT_EQ(destroyed, 1);
}

TEST(ObjectRef, LabelsAreHeldTwiceByAListOfTheirBase) {
    auto* label = new Label;
    {
        std::vector<object_ref<Shape>> children;
        {
            object_ref<Label> made(label);
            children.emplace_back(made);
            EXPECT_EQ(label->references(), 3);
        }
        EXPECT_EQ(label->references(), 2);
    }
    EXPECT_EQ(label->references(), 1) << "it outlives the list";
    label->release();
}

TEST(ObjectRef, OnlyDeclaredConversionsExist) {
    static_assert(std::is_constructible_v<object_ref<Shape>, const object_ref<Label>&>);
    static_assert(conversion_references<Shape, Button> == 0);
    auto* button = new Button;
    object_ref<Button> owner(button);
    object_ref<Shape> base(static_cast<Shape*>(button));
    EXPECT_EQ(button->references(), 2) << "any other class is counted once";
}

}  // namespace

// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/edit/PositionMap.h"

#include <gtest/gtest.h>

#include "tests/audio/edit/NumberedMaterial.h"

using namespace audio::edit;

namespace {

class PositionMapTest : public testing::Test {
  protected:
    PositionMap map() const { return {list, *source, source->frames()}; }

    std::shared_ptr<const NumberedMaterial> source = std::make_shared<NumberedMaterial>(1000);
    EditList list{{44100, 1}, source};
};

}  // namespace

TEST_F(PositionMapTest, EverythingStaysWhereOnlyTheLevelChanges) {
    list.applyGain({100, 300}, 0, 1);
    for (const std::int64_t frame : {0, 99, 100, 250, 300, 999, 1000})
        EXPECT_EQ(map()(frame), frame);
}

TEST_F(PositionMapTest, SoundBehindInsertedSilenceMoves) {
    list.insertSilence(500, 50);
    EXPECT_EQ(map()(0), 0);
    EXPECT_EQ(map()(499), 499);
    EXPECT_EQ(map()(500), 550);
    EXPECT_EQ(map()(1000), 1050);
}

TEST_F(PositionMapTest, WhatWasCutOutLiesAtTheCut) {
    list.erase({200, 400});
    EXPECT_EQ(map()(199), 199);
    EXPECT_EQ(map()(200), 200);
    EXPECT_EQ(map()(399), 200);
    EXPECT_EQ(map()(400), 200);
    EXPECT_EQ(map()(700), 500);
    list = list.slice({100, 600});
    EXPECT_EQ(map()(50), 0);
    EXPECT_EQ(map()(700), 400);
    EXPECT_EQ(map()(900), 500);
    EXPECT_EQ(map()(1000), 500);
}

TEST_F(PositionMapTest, SoundThatAnEffectReplacedKeepsItsPlaces) {
    list.replace({300, 500}, std::make_shared<NumberedMaterial>(200));
    list.insertSilence(0, 10);
    EXPECT_EQ(map()(0), 10);
    EXPECT_EQ(map()(350), 360);
    EXPECT_EQ(map()(600), 610);
    list.replace({0, 1010}, std::make_shared<NumberedMaterial>(1010));
    EXPECT_EQ(map()(350), 350);
    EXPECT_EQ(map()(1000), 1010);
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "audio/edit/EditList.h"

#include <numeric>
#include <random>

#include <gtest/gtest.h>

#include "audio/edit/EffectMaterial.h"
#include "tests/audio/edit/NumberedMaterial.h"

using namespace audio::edit;

namespace {

constexpr Shape mono{44100, 1};

std::vector<float> numbers(int first, int last) {
    std::vector<float> result(static_cast<std::size_t>(last - first + 1));
    std::iota(result.begin(), result.end(), static_cast<float>(first));
    return result;
}

class EditListTest : public testing::Test {
  protected:
    std::shared_ptr<const NumberedMaterial> source = std::make_shared<NumberedMaterial>(1000);
    EditList list{mono, source};
};

}  // namespace

TEST_F(EditListTest, IsTheSourceAtFirst) {
    EXPECT_TRUE(list.isAllOf(*source));
    EXPECT_EQ(rendered(list), numbers(1, 1000));
}

TEST_F(EditListTest, ErasingClosesTheGap) {
    list.erase({100, 200});
    EXPECT_EQ(list.frames(), 900);
    const auto sound = rendered(list);
    EXPECT_EQ(sound[99], 100);
    EXPECT_EQ(sound[100], 201);
    EXPECT_FALSE(list.isAllOf(*source));
    EXPECT_TRUE(list.keepsAnyOf(*source));
}

TEST_F(EditListTest, SilenceGoesInAnywhere) {
    for (const int at : {0, 500, 1000}) {
        EditList longer = list;
        longer.insertSilence(at, 10);
        const auto sound = rendered(longer);
        ASSERT_EQ(sound.size(), 1010U);
        EXPECT_EQ(std::count(sound.begin() + at, sound.begin() + at + 10, 0.0F), 10);
        EXPECT_EQ(std::count(sound.begin(), sound.end(), 0.0F), 10);
    }
}

TEST_F(EditListTest, UndoneCutsAreOneSegmentAgain) {
    list.insertSilence(500, 10);
    list.erase({500, 510});
    EXPECT_EQ(list.segments().size(), 1U);
    EXPECT_TRUE(list.isAllOf(*source));
}

TEST_F(EditListTest, GainsStayWithTheirFramesThroughCuts) {
    list.applyGain({0, 1000}, 0.0, 1.0);
    list.erase({0, 500});
    list.insertSilence(100, 5);
    const auto sound = rendered(list);
    EXPECT_FLOAT_EQ(sound[0], 501.0F * 500.0F / 999.0F);
    EXPECT_FLOAT_EQ(sound[105], 601.0F * 600.0F / 999.0F);
    EXPECT_FLOAT_EQ(sound.back(), 1000.0F);
    EXPECT_FALSE(list.keepsAnyOf(*source));
}

TEST_F(EditListTest, GainsMultiply) {
    list.applyGain({0, 1000}, 0.5, 0.5);
    list.applyGain({500, 1000}, 0.5, 0.5);
    const auto sound = rendered(list);
    EXPECT_EQ(sound[499], 250.0F);
    EXPECT_EQ(sound[500], 501.0F / 4);
}

TEST_F(EditListTest, AGainOfOneTouchesNothing) {
    list.applyGain({0, 500}, 1.0, 1.0);
    EXPECT_TRUE(list.isAllOf(*source));
}

TEST_F(EditListTest, AnEchoIsReadAcrossCuts) {
    list.replace({100, 900},
                 std::make_shared<EchoMaterial>(
                     list.slice({100, 900}), audio::dsp::EchoSettings{50, 1.0, 0.5, 0.5, 1e9, 1}));
    const auto whole = rendered(list);
    EXPECT_EQ(whole[99], 100.0F);
    EXPECT_EQ(whole[149], 150.0F);
    EXPECT_FLOAT_EQ(whole[150], 151.0F + 0.5F * 101.0F);
    EXPECT_EQ(whole[900], 901.0F);
    EditList cut = list;
    cut.erase({200, 400});
    const auto rest = rendered(cut);
    EXPECT_EQ(std::vector(rest.begin(), rest.begin() + 200),
              std::vector(whole.begin(), whole.begin() + 200));
    EXPECT_EQ(std::vector(rest.begin() + 200, rest.end()),
              std::vector(whole.begin() + 400, whole.end()));
}

TEST_F(EditListTest, AMixEndsWithTheShorterSound) {
    const auto other = std::make_shared<NumberedMaterial>(30);
    list.replace({200, 240}, std::make_shared<MixMaterial>(list.slice({200, 240}), 2.0,
                                                           MixMaterial::Other{other, 0.5}));
    const auto sound = rendered(list);
    EXPECT_EQ(sound[200], 402.0F + 0.5F);
    EXPECT_EQ(sound[229], 460.0F + 15.0F);
    EXPECT_EQ(sound[230], 462.0F);
    EXPECT_EQ(sound[240], 241.0F);
}

// Against the plain way of doing the same to a vector.
TEST_F(EditListTest, RandomEditsAreWhatTheySay) {
    std::mt19937 random(42);
    const auto below = [&random](std::int64_t limit) {
        return std::uniform_int_distribution<std::int64_t>(0, limit)(random);
    };
    for (int round = 0; round < 200; ++round) {
        EditList edited = list;
        std::vector<float> plain = numbers(1, 1000);
        for (int step = 0; step < 8; ++step) {
            const auto a = below(edited.frames());
            const auto b = a + below(edited.frames() - a);
            switch (below(2)) {
                case 0:
                    edited.erase({a, b});
                    plain.erase(plain.begin() + a, plain.begin() + b);
                    break;
                case 1:
                    edited.insertSilence(a, b - a);
                    plain.insert(plain.begin() + a, static_cast<std::size_t>(b - a), 0.0F);
                    break;
                default:
                    edited.applyGain({a, b}, 0.5, 0.25);
                    audio::dsp::applyRamp(std::span(plain).subspan(static_cast<std::size_t>(a),
                                                                   static_cast<std::size_t>(b - a)),
                                          1, {0.5, 0.25, b - a}, 0);
            }
        }
        ASSERT_EQ(rendered(edited), plain) << round;
    }
}

TEST_F(EditListTest, ReadersSeek) {
    list.erase({100, 200});
    list.insertSilence(300, 50);
    const auto whole = rendered(list);
    EditReader reader(list);
    for (const std::int64_t at : {700, 0, 99, 100, 320, 950}) {
        reader.seek(at);
        EXPECT_EQ(readAll(reader), std::vector(whole.begin() + at, whole.end())) << at;
    }
}

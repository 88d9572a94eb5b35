// Colours of points from flat arrays: layout by length, clamping, and where alpha comes from.
#include "../../plugin/arrays/pointColor.h"

#include <gtest/gtest.h>

using pointColor::Layout;
using pointColor::Rule;

TEST(PointColor, LayoutByLength)
{
    struct Case { std::size_t length, points; bool allowRgb; Layout layout; };
    const Case cases[] = {
        {12, 3, true, Layout::kRgba},  {9, 3, true, Layout::kRgb},    {9, 3, false, Layout::kNone},
        {3, 3, true, Layout::kValue},  {6, 3, true, Layout::kNone},   {13, 3, true, Layout::kNone},
        {0, 0, false, Layout::kRgba},  // no points: four a point, and no warning
        {0, 3, true, Layout::kNone},   {1, 0, true, Layout::kNone},
    };
    for (const Case& c : cases)
        EXPECT_EQ(pointColor::layoutOfDoubles(c.length, c.points, c.allowRgb), c.layout) << c.length << "/" << c.points;
}

TEST(PointColor, MinimumBeforeMaximum)
{
    struct Case { double value, min, max, result; bool clamp; };
    const Case cases[] = {
        {-0.5, 0.0, 1.0, 0.0, true}, {1.5, 0.0, 1.0, 1.0, true}, {0.5, 0.0, 1.0, 0.5, true},
        {1.5, 0.0, 1.0, 1.5, false},
        // bounds the wrong way round: below min gives min, anything else is above max
        {0.5, 0.8, 0.2, 0.8, true}, {0.9, 0.8, 0.2, 0.2, true},
    };
    for (const Case& c : cases) {
        Rule rule;
        rule.clamp = c.clamp;
        rule.min = c.min;
        rule.max = c.max;
        EXPECT_DOUBLE_EQ(pointColor::clamped(c.value, rule), c.result) << c.value << " in " << c.min << ".." << c.max;
    }
}

TEST(PointColor, ChannelsAndAlphaByLayout)
{
    // the second of two points; values that differ everywhere, so that a wrong stride or channel shows
    const double values[] = {9, 9, 9, 9, 0.1, 0.2, 0.3, 0.4, 0.5};
    struct Case { Layout layout; bool solid; std::size_t point; float r, g, b, a; };
    const Case cases[] = {
        {Layout::kXyz, false, 2, 0.3f, 0.4f, 0.5f, 0.0f},     // transparent, not the alpha it had
        {Layout::kXyz, true, 2, 0.3f, 0.4f, 0.5f, 1.0f},
        {Layout::kXyzw, false, 1, 0.1f, 0.2f, 0.3f, 0.0f},
        {Layout::kXyzw, true, 1, 0.1f, 0.2f, 0.3f, 1.0f},
        {Layout::kRgba, false, 1, 0.1f, 0.2f, 0.3f, 0.4f},
        {Layout::kRgba, true, 1, 0.1f, 0.2f, 0.3f, 1.0f},
        {Layout::kRgb, false, 2, 0.3f, 0.4f, 0.5f, 0.75f},    // keeps the present alpha
        {Layout::kRgb, true, 2, 0.3f, 0.4f, 0.5f, 1.0f},
        {Layout::kValue, false, 5, 0.2f, 0.2f, 0.2f, 0.2f},
        {Layout::kValue, true, 5, 0.2f, 0.2f, 0.2f, 1.0f},
    };
    for (const Case& c : cases) {
        Rule rule;
        rule.layout = c.layout;
        rule.solidAlpha = c.solid;
        const pointColor::Rgba color = pointColor::at(values, c.point, rule, 0.75f);
        const auto             what = static_cast<int>(c.layout);
        EXPECT_EQ(color.r, c.r) << what;
        EXPECT_EQ(color.g, c.g) << what;
        EXPECT_EQ(color.b, c.b) << what;
        EXPECT_EQ(color.a, c.a) << what;
    }
}

TEST(PointColor, AlphaOfFourValuesIsClampedButNotThePresentOne)
{
    const double values[] = {2.0, -1.0, 0.5, 3.0};
    Rule         rule;
    rule.clamp = true;
    rule.layout = Layout::kRgba;
    EXPECT_EQ(pointColor::at(values, 0, rule, 5.0f).a, 1.0f);
    EXPECT_EQ(pointColor::at(values, 0, rule, 5.0f).r, 1.0f);
    EXPECT_EQ(pointColor::at(values, 0, rule, 5.0f).g, 0.0f);
    rule.layout = Layout::kRgb;
    EXPECT_EQ(pointColor::at(values, 0, rule, 5.0f).a, 5.0f);
}

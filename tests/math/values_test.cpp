// Colours, boxes, units and object handles.
#include <gtest/gtest.h>

#include <maya/MAngle.h>
#include <maya/MBoundingBox.h>
#include <maya/MColor.h>
#include <maya/MDistance.h>
#include <maya/MObjectArray.h>
#include <maya/MObjectHandle.h>
#include <maya/MTime.h>

#include "data/mobject.h"

TEST(Color, ModelsConvertBothWays)
{
    const MColor c(0.2f, 0.6f, 0.4f, 0.5f);
    float        h, s, v, a;
    c.get(MColor::kHSV, h, s, v, a);
    EXPECT_NEAR(h, 150, 1e-3);  // green, a third of the way towards blue and half of that again
    EXPECT_NEAR(s, 2.0 / 3, 1e-6);
    EXPECT_NEAR(v, 0.6, 1e-6);
    for (const auto model : {MColor::kRGB, MColor::kHSV, MColor::kCMY, MColor::kCMYK}) {
        float p, q, r, t;
        c.get(model, p, q, r, t);
        const MColor back(model, p, q, r, t);
        EXPECT_NEAR(back.r, c.r, 1e-6);
        EXPECT_NEAR(back.g, c.g, 1e-6);
        EXPECT_NEAR(back.b, c.b, 1e-6);
    }
    EXPECT_EQ(MColor(MColor::kHSV, -120, 1, 1), MColor(0, 0, 1));
    EXPECT_EQ(MColor().set(MColor::MColorType(9), 0, 0, 0), MS::kInvalidParameter);
}

TEST(BoundingBox, GrowsFromNothing)
{
    MBoundingBox box;
    EXPECT_EQ(box.width(), 0);
    EXPECT_FALSE(box.contains(MPoint()));
    box.expand(MPoint(5, 6, 7));
    EXPECT_EQ(box.min(), MPoint(5, 6, 7));
    box.expand(MBoundingBox());
    EXPECT_EQ(box.width(), 0);
    box.expand(MBoundingBox(MPoint(8, 2, 7), MPoint(7, 3, 9)));
    EXPECT_EQ(box.center(), MPoint(6.5, 4, 8));
    EXPECT_TRUE(box.intersects(MBoundingBox(MPoint(8, 6, 9), MPoint(10, 10, 10))));
    EXPECT_FALSE(box.intersects(MBoundingBox(MPoint(8.1, 6, 9), MPoint(10, 10, 10))));
    EXPECT_TRUE(box.intersects(MBoundingBox(MPoint(8.1, 6, 9), MPoint(10, 10, 10)), 0.2));
    MMatrix swap;  // x and y change places
    swap[0][0] = swap[1][1] = 0, swap[0][1] = swap[1][0] = 1;
    box.transformUsing(swap);
    EXPECT_EQ(box.min(), MPoint(2, 5, 7));
    EXPECT_EQ(box.max(), MPoint(6, 8, 9));
}

TEST(Units, ConvertAndRefuseWhatIsNone)
{
    EXPECT_DOUBLE_EQ(MTime(48, MTime::kFilm).as(MTime::kSeconds), 2);
    EXPECT_DOUBLE_EQ(MTime(1, MTime::kHours).as(MTime::k30FPS), 108000);
    EXPECT_DOUBLE_EQ(MTime(1001, MTime::kMilliseconds).as(MTime::k29_97FPS), 30);
    EXPECT_EQ(MTime(1, MTime::kSeconds), MTime(25, MTime::k25FPS));
    EXPECT_TRUE(MTime(7, MTime::k30FPS) * 3 == MTime(0.7, MTime::kSeconds));
    EXPECT_LT(MTime(1, MTime::kFilm), MTime(1, MTime::k15FPS));
    EXPECT_DOUBLE_EQ((MTime(12, MTime::kFilm) + MTime(0.5, MTime::kSeconds)).value(), 24);
    EXPECT_EQ(int(MTime::k6000FPS), 42);
    EXPECT_EQ(MTime::setUIUnit(MTime::kLast), MS::kInvalidParameter);
    EXPECT_EQ(MTime(1, MTime::Unit(99)).unit(), MTime::uiUnit());

    EXPECT_DOUBLE_EQ(MAngle(180, MAngle::kDegrees).asRadians(), 3.141592653589793);
    EXPECT_DOUBLE_EQ(MDistance(1, MDistance::kFeet).asInches(), 12);
    EXPECT_DOUBLE_EQ(MDistance(1, MDistance::kMeters).asMillimeters(), 1000);
    EXPECT_EQ(MDistance::setUIUnit(MDistance::kMeters), MS::kSuccess);
    EXPECT_DOUBLE_EQ(MDistance::uiToInternal(2), 200);
    MDistance::setUIUnit(MDistance::kCentimeters);
}

namespace {

struct Thing : mirk::Object
{
    explicit Thing(int& alive) : alive(alive) { ++alive; }
    ~Thing() override { --alive; }
    MFn::Type apiType() const override { return MFn::kMesh; }
    bool      valid() const override { return inScene; }

    int& alive;
    bool inScene = true;
};

}  // namespace

TEST(Object, HandlesCountAndSeeDeletion)
{
    int alive = 0;
    {
        MObject      object = mirk::wrap(new Thing(alive));
        MObject      copy = object, moved = std::move(copy);
        MObjectArray array(2, moved);
        object = moved;
        moved  = MObject::kNullObj;
        EXPECT_EQ(alive, 1);
        EXPECT_STREQ(array[1].apiTypeStr(), "kMesh");
        EXPECT_TRUE(object.hasFn(MFn::kBase) && array[0] == object && !copy.hasFn(MFn::kBase));
        EXPECT_EQ(mirk::objectAs<mirk::Object>(MObject()), nullptr);

        const MObjectHandle handle(object);
        EXPECT_TRUE(handle.isValid() && handle.object() == object);
        mirk::objectAs<Thing>(object)->inScene = false;
        EXPECT_TRUE(handle.isAlive() && !handle.isValid() && handle.object().isNull());
    }
    EXPECT_EQ(alive, 0);
    EXPECT_STREQ(MObject().apiTypeStr(), "kInvalid");
}

// Arrays: what is shared, what is not, and what happens at the ends.
#include <gtest/gtest.h>

#include <sstream>
#include <type_traits>

#include <maya/MColorArray.h>
#include <maya/MDoubleArray.h>
#include <maya/MFloatVectorArray.h>
#include <maya/MIntArray.h>
#include <maya/MMatrixArray.h>
#include <maya/MObjectArray.h>
#include <maya/MPointArray.h>
#include <maya/MStringArray.h>
#include <maya/MTimeArray.h>
#include <maya/MUintArray.h>
#include <maya/MVectorArray.h>

#include "data/array_access.h"

using namespace mirk;

static_assert(std::is_trivially_copyable_v<MVector> && std::is_trivially_copyable_v<MMatrix>);
static_assert(std::is_nothrow_move_constructible_v<MDoubleArray>);

TEST(Arrays, AnAliasWritesThroughWhateverIsDone)
{
    const auto   buffer = make<Buffer<double>>(3, 1.0);
    MDoubleArray alias = aliasOf(*buffer);
    alias[1] = 5;
    alias.append(7);
    EXPECT_EQ(buffer->size(), 4u);
    EXPECT_EQ((*buffer)[1], 5);
    EXPECT_EQ((*buffer)[3], 7);

    buffer->push(9);  // and the array sees what the owner does, reallocation included
    EXPECT_EQ(alias.length(), 5u);
    EXPECT_EQ(alias[4], 9);

    alias.remove(0);
    alias.insert(-1, 2);
    alias.setLength(6);
    alias[5] = 0;  // new values are undefined
    const double expected[] = {5, 1, -1, 7, 9, 0};
    ASSERT_EQ(buffer->size(), 6u);
    for (size_t i = 0; i < 6; ++i)
        EXPECT_EQ((*buffer)[i], expected[i]) << i;

    alias = MDoubleArray(2, 4.0);  // assignment fills the data, it does not rebind
    EXPECT_EQ(buffer->size(), 2u);
    EXPECT_EQ((*buffer)[1], 4);
    alias.clear();
    EXPECT_TRUE(buffer->empty());
}

TEST(Arrays, CopiesOfAnAliasAreTheirOwn)
{
    const auto   buffer = make<Buffer<double>>(2, 1.0);
    MDoubleArray alias = aliasOf(*buffer);
    MDoubleArray copy = alias, assigned, moved;
    assigned = alias;
    moved    = aliasOf(*buffer);
    copy[0] = assigned[0] = moved[0] = 8;
    EXPECT_EQ((*buffer)[0], 1);

    MDoubleArray returned = std::move(alias);  // as when returned by value
    returned[0] = 3;
    EXPECT_EQ((*buffer)[0], 3);
    EXPECT_EQ(alias.length(), 0u);
}

TEST(Arrays, AnAliasKeepsTheBufferButDoesNotMakeItShared)
{
    Ref<Buffer<double>> mine = make<Buffer<double>>(1, 1.0);
    MDoubleArray        alias = aliasOf(*mine);
    const auto*         before = mine.get();
    EXPECT_EQ(&detach(mine), before);  // the owner still writes in place

    Ref<Buffer<double>> other = mine;
    EXPECT_NE(&detach(mine), before);
    mine = other = nullptr;
    alias[0] = 2;
    EXPECT_EQ(alias[0], 2);
}

TEST(Arrays, TakingAPrivateArrayCopiesNothing)
{
    MDoubleArray  array(4, 2.0);
    const double* values = &array[0];
    EXPECT_NE(takeOrCopy(array)->data(), values);
    EXPECT_EQ(takeOrCopy(std::move(array))->data(), values);
    EXPECT_EQ(array.length(), 0u);
    EXPECT_EQ(bufferOf(array).size(), 0u);

    const auto   buffer = make<Buffer<double>>(1, 1.0);
    MDoubleArray alias = aliasOf(*buffer);
    EXPECT_NE(takeOrCopy(std::move(alias)).get(), buffer.get());
}

TEST(Arrays, NothingIsReadOrWrittenPastTheEnd)
{
    MIntArray array(2, 3);
    EXPECT_EQ(std::as_const(array)[2], 0);
    EXPECT_EQ(std::as_const(array)[0xffffffffu], 0);
    array[7] = 5;  // lost
    EXPECT_EQ(array[7], 0);
    EXPECT_EQ(array.set(1, 2), MS::kFailure);
    EXPECT_EQ(array.remove(2), MS::kFailure);
    EXPECT_EQ(array.insert(1, 3), MS::kFailure);
    EXPECT_EQ(array.length(), 2u);

    MIntArray none;
    none[0] = 1;
    EXPECT_EQ(none[0], 0);
    EXPECT_EQ(none.insert(4, 0), MS::kSuccess);
    EXPECT_EQ(none[0], 4);
    EXPECT_EQ(MPointArray()[3], MPoint(0, 0, 0, 1));
}

TEST(Arrays, ElementsOfTheArrayItselfMayBeGiven)
{
    MStringArray strings;
    for (int i = 0; i < 40; ++i)
        strings.append(i ? strings[0] : MString("a text too long to be stored in place"));
    EXPECT_EQ(strings[39], strings[0]);
    strings.insert(strings[39], 0);
    EXPECT_EQ(strings.length(), 41u);
    EXPECT_EQ(strings[0], strings[40]);
    EXPECT_EQ(strings.indexOf("other"), -1);

    MIntArray numbers(8, 6);
    numbers.append(numbers[7]);
    numbers = *&numbers;
    EXPECT_EQ(numbers[8], 6);
}

TEST(Arrays, GrowingKeepsTheHead)
{
    MPointArray points(3, MPoint(1, 2, 3, 4));
    points.setLength(1);
    points.setLength(2000);
    EXPECT_EQ(points[0], MPoint(1, 2, 3, 4));
    EXPECT_EQ(points.length(), 2000u);
    MMatrixArray matrices(1);
    EXPECT_EQ(matrices[0], MMatrix::identity);
}

TEST(Arrays, PlainCArraysGoInAndOut)
{
    const double  source[2][4] = {{1, 2, 3, 1}, {4, 5, 6, 2}};
    MPointArray   points(source, 2);
    float         out[2][4];
    points.get(out);
    EXPECT_EQ(out[1][3], 2.0f);
    points.set(0, 7, 8);
    EXPECT_EQ(points[0], MPoint(7, 8, 0, 1));

    const float   floats[] = {0.5f, 1.5f};
    MDoubleArray  doubles(floats, 2);
    EXPECT_EQ(doubles[1], 1.5);

    std::ostringstream text;
    text << points << MStringArray(2, "x");
    EXPECT_EQ(text.str(), "[[7, 8, 0, 1], [4, 5, 6, 2]][x, x]");
}

TEST(Arrays, StringArraysAlias)
{
    const auto   buffer = make<ElementBuffer<MString>>(1, MString("a"));
    MStringArray alias = aliasOf(*buffer), copy = alias;
    alias.append("b");
    alias[0] += "c";
    copy[0] = "other";
    ASSERT_EQ(buffer->size(), 2u);
    EXPECT_EQ((*buffer)[0], "ac");
}

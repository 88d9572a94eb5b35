// Shared routines of the toolkit.
#include "../../plugin/core/spatialHash.h"
#include "../../plugin/core/text.h"

#include <gtest/gtest.h>

using Fields = std::vector<std::string>;

TEST(Split, FieldsBetweenSingleSeparators)
{
    EXPECT_EQ(split("a b c", ' '), (Fields{"a", "b", "c"}));
    EXPECT_EQ(split("a  b", ' '), (Fields{"a", "", "b"}));
    EXPECT_EQ(split(" a ", ' '), (Fields{"", "a"}));   // nothing after the last separator
    EXPECT_EQ(split("a\tb", ' '), (Fields{"a\tb"}));
    EXPECT_EQ(split("", ' '), Fields{});
}

TEST(SpatialHash, KnownCells)
{
    // worked out with integers of any length, cut to 32 bits at the end of each product
    EXPECT_EQ(hashFunction({0, 0, 0}, 1), 3367392728u);
    EXPECT_EQ(hashFunction({1.5, -2.25, 3.75}, 0.5), 1999275939u);
    EXPECT_EQ(hashFunction({-5000, 2, 3}, 0.1), 4129523262u);   // a negative cell number wraps
    EXPECT_EQ(hashFunction({0, 0, 0}, 0), 0u);                  // no cells at all
}

#include "shared/System/kvNumberText.h"

#include <gtest/gtest.h>

#include <climits>

using namespace Korvanel;

TEST(NumberText, DigitsAboveNineAreLowerCaseLetters)
{
    char text[34];
    EXPECT_STREQ(myultoa(255, text, 16), "ff");
    EXPECT_STREQ(myultoa(35, text, 36), "z");
    EXPECT_STREQ(myultoa(4294967295u, text, 10), "4294967295");
}

TEST(NumberText, ZeroHasOneDigit)
{
    char text[34];
    EXPECT_STREQ(myitoa(0, text, 10), "0");
    EXPECT_STREQ(myultoa(0, text, 2), "0");
}

TEST(NumberText, OnlyRadixTenHasASign)
{
    char text[34];
    EXPECT_STREQ(myitoa(-42, text, 10), "-42");
    EXPECT_STREQ(myltoa(-42, text, 10), "-42");
    EXPECT_STREQ(myitoa(-1, text, 16), "ffffffff");
    EXPECT_STREQ(myltoa(-1, text, 2), "11111111111111111111111111111111");
    EXPECT_STREQ(myultoa(static_cast<std::uint32_t>(-1), text, 10), "4294967295");
}

TEST(NumberText, TheLowestNumberHasAllItsDigits)
{
    char text[34];
    EXPECT_STREQ(myitoa(INT_MIN, text, 10), "-2147483648");
}

TEST(NumberText, TheNegativeSwitchNegatesInAnyRadix)
{
    char text[34];
    EXPECT_STREQ(myxtoa(static_cast<std::uint32_t>(-255), text, 16, 1), "-ff");
    EXPECT_EQ(myxtoa(7, text, 10, 0), text);
}

TEST(NumberText, ARadixWithoutDigitsGivesTheEmptyText)
{
    for (const int radix : {-10, 0, 1, 37}) {
        char text[34] = "old";
        EXPECT_STREQ(myitoa(5, text, radix), "") << "radix " << radix;
    }
}

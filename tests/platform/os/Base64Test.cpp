#include "platform/os/Base64.h"

#include <gtest/gtest.h>

using namespace platform;

TEST(Base64, WritesEveryLengthOfTheLastGroup)
{
    EXPECT_EQ(toBase64(""), "");
    EXPECT_EQ(toBase64("f"), "Zg==");
    EXPECT_EQ(toBase64("fo"), "Zm8=");
    EXPECT_EQ(toBase64("foo"), "Zm9v");
    EXPECT_EQ(toBase64("foob"), "Zm9vYg==");
    EXPECT_EQ(toBase64(std::string("\xff\0\xfe", 3)), "/wD+");
}

TEST(Base64, GivesEveryByteBack)
{
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
        EXPECT_EQ(fromBase64(toBase64(bytes)), bytes);
    }
}

TEST(Base64, RefusesWhatItWouldNotHaveWritten)
{
    for (const char* text : {"Z", "Zg", "Zg=", "Zg===", "Zh==", "Zg==Zg==", "Z g=", "====", "Zm9-"})
        EXPECT_FALSE(fromBase64(text)) << text;
}

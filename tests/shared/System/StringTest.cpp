#include "shared/System/kvString.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <new>
#include <thread>
#include <vector>

using Korvanel::String;

namespace {

bool share(const String& a, const String& b)
{
    return a.c_str() == b.c_str();
}

std::string formatted(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    String text;
    text.FormatV(format, arguments);
    va_end(arguments);
    return text.c_str();
}

} // namespace

TEST(String, ADefaultStringIsEmptyAndTerminated)
{
    const String text;
    EXPECT_EQ(text.GetLength(), 0);
    EXPECT_STREQ(text.c_str(), "");
}

TEST(String, AllEmptyStringsShareOneBlock)
{
    const String fromNull(static_cast<const char*>(nullptr));
    EXPECT_TRUE(share(String(), fromNull));
    EXPECT_TRUE(share(String(""), String('x', 0)));
}

TEST(String, ACopySharesAndAWriteSeparates)
{
    String a("abc");
    String b(a);
    ASSERT_TRUE(share(a, b));
    b.SetAt(0, 'X');
    EXPECT_STREQ(a.c_str(), "abc");
    EXPECT_STREQ(b.c_str(), "Xbc");
}

TEST(String, ACountedCopyKeepsNuls)
{
    const String text("a\0b", 3);
    EXPECT_EQ(text.GetLength(), 3);
    EXPECT_EQ(text[2], 'b');
}

TEST(String, RepeatsACharacter)
{
    EXPECT_STREQ(String('x', 3).c_str(), "xxx");
    EXPECT_TRUE(String('x', -1).IsEmpty());
}

TEST(String, JoinsInEveryCombination)
{
    const String a("a");
    const String b("b");
    EXPECT_STREQ((a + b).c_str(), "ab");
    EXPECT_STREQ((a + "c").c_str(), "ac");
    EXPECT_STREQ(("c" + a).c_str(), "ca");
    EXPECT_STREQ((a + 'd').c_str(), "ad");
    EXPECT_STREQ(('d' + a).c_str(), "da");
    EXPECT_EQ((a + b).GetAllocLength(), 2);
}

TEST(String, AppendingReallocatesToTheExactLength)
{
    String text("ab");
    text += "cde";
    EXPECT_STREQ(text.c_str(), "abcde");
    EXPECT_EQ(text.GetAllocLength(), 5);
}

TEST(String, AppendingItselfDoublesIt)
{
    String text("ab");
    text += text;
    EXPECT_STREQ(text.c_str(), "abab");
}

TEST(String, AppendingInAReservedBufferStaysThere)
{
    String text("ab");
    const char* buffer = text.GetBuffer(10);
    text.ReleaseBuffer();
    text += 'c';
    EXPECT_EQ(text.c_str(), buffer);
    EXPECT_STREQ(text.c_str(), "abc");
}

TEST(String, AssigningAPartOfItselfWorks)
{
    String text("abcdef");
    text = text.c_str() + 2;
    EXPECT_STREQ(text.c_str(), "cdef");
}

TEST(String, EmptyReleasesButALockedBufferStays)
{
    String text("abc");
    const char* buffer = text.LockBuffer();
    text.Empty();
    EXPECT_EQ(text.c_str(), buffer);
    EXPECT_EQ(text.GetLength(), 0);
    text.UnlockBuffer();
}

TEST(String, ALockedStringIsCopiedNotShared)
{
    String locked("abc");
    locked.LockBuffer();
    String assigned;
    assigned = locked;
    EXPECT_FALSE(share(assigned, locked));
    EXPECT_FALSE(share(String(locked), locked));
    locked.UnlockBuffer();
    assigned = locked;
    EXPECT_TRUE(share(assigned, locked));
}

TEST(String, AssigningToALockedStringKeepsItsBuffer)
{
    String locked("abcdef");
    const char* buffer = locked.LockBuffer();
    locked = String("xy");
    EXPECT_EQ(locked.c_str(), buffer);
    EXPECT_STREQ(locked.c_str(), "xy");
    locked.UnlockBuffer();
}

TEST(String, GetBufferKeepsTheTextAndReservesAtLeastItsLength)
{
    String text("abc");
    const String shared = text;
    char* buffer = text.GetBuffer(1);
    EXPECT_FALSE(share(text, shared));
    EXPECT_STREQ(buffer, "abc");
    EXPECT_EQ(text.GetAllocLength(), 3);
}

TEST(String, ReleaseBufferTakesTheLengthFromTheTerminator)
{
    String text;
    std::strcpy(text.GetBuffer(10), "abc");
    text.ReleaseBuffer();
    EXPECT_EQ(text.GetLength(), 3);
    text.FreeExtra();
    EXPECT_EQ(text.GetAllocLength(), 3);
    EXPECT_STREQ(text.c_str(), "abc");
}

TEST(String, GetBufferSetLengthSetsIt)
{
    String text("abcdef");
    text.GetBufferSetLength(2);
    EXPECT_STREQ(text.c_str(), "ab");
}

TEST(String, CompareIsByteWise)
{
    EXPECT_LT(String("A").Compare("a"), 0);
    EXPECT_EQ(String("a").Compare("a"), 0);
    EXPECT_TRUE(String("a") == String("a"));
    EXPECT_TRUE(String("a") != String("b"));
}

TEST(String, FindsCharactersAndTexts)
{
    const String text("abcabc");
    EXPECT_EQ(text.Find('c'), 2);
    EXPECT_EQ(text.Find('c', 3), 5);
    EXPECT_EQ(text.Find("bc", 2), 4);
    EXPECT_EQ(text.Find('x'), -1);
    EXPECT_EQ(text.ReverseFind('a'), 3);
    EXPECT_EQ(text.FindOneOf("xcb"), 1);
}

TEST(String, FindPastTheEndIsNothing)
{
    EXPECT_EQ(String("abc").Find('x', 10), -1);
    EXPECT_EQ(String("abc").Find('c', 3), -1);
    EXPECT_EQ(String("abc").Find("", 3), -1);
}

TEST(String, MidIsCutToWhatIsThere)
{
    const String text("abcdef");
    EXPECT_STREQ(text.Mid(-3, 2).c_str(), "ab");
    EXPECT_STREQ(text.Mid(4, 10).c_str(), "ef");
    EXPECT_STREQ(text.Mid(9, 1).c_str(), "");
    EXPECT_STREQ(text.Mid(2, -1).c_str(), "");
    EXPECT_STREQ(text.Mid(4).c_str(), "ef");
    EXPECT_TRUE(share(text.Mid(0, 6), text));
}

TEST(String, LeftAndRightAreCutToo)
{
    EXPECT_TRUE(String("abc").Left(-1).IsEmpty());
    EXPECT_STREQ(String("abc").Left(2).c_str(), "ab");
    EXPECT_STREQ(String("abc").Right(2).c_str(), "bc");
    EXPECT_STREQ(String("abc").Right(10).c_str(), "abc");
}

TEST(String, SpansLeadingCharacters)
{
    EXPECT_STREQ(String("aabbc").SpanIncluding("ab").c_str(), "aabb");
    EXPECT_STREQ(String("aabbc").SpanExcluding("c").c_str(), "aabb");
}

TEST(String, InsertsWithinTheEnds)
{
    String text("bc");
    EXPECT_EQ(text.Insert(-5, 'a'), 3);
    EXPECT_EQ(text.Insert(99, "de"), 5);
    EXPECT_EQ(text.Insert(1, text.c_str()), 10);
    EXPECT_STREQ(text.c_str(), "aabcdebcde");
}

TEST(String, DeleteReturnsTheLengthBefore)
{
    String text("abcdef");
    EXPECT_EQ(text.Delete(1, 2), 6);
    EXPECT_STREQ(text.c_str(), "adef");
    EXPECT_EQ(text.Delete(9, 1), 4);
    EXPECT_EQ(text.Delete(-1, 1), 4);
    EXPECT_STREQ(text.c_str(), "def");
}

TEST(String, ReplacesLeftToRightWithoutOverlap)
{
    String text("aaaa");
    EXPECT_EQ(text.Replace("aa", "b"), 2);
    EXPECT_STREQ(text.c_str(), "bb");
    EXPECT_EQ(text.Replace("b", "xyz"), 2);
    EXPECT_STREQ(text.c_str(), "xyzxyz");
    EXPECT_EQ(text.Replace('x', '-'), 2);
    EXPECT_EQ(text.Replace("", "q"), 0);
    EXPECT_EQ(text.Replace(nullptr, "q"), 0);
    EXPECT_STREQ(text.c_str(), "-yz-yz");
}

TEST(String, RemovesEveryOccurrence)
{
    String text("banana");
    EXPECT_EQ(text.Remove('a'), 3);
    EXPECT_STREQ(text.c_str(), "bnn");
}

TEST(String, TrimsBothEnds)
{
    String text(" \t a b \n");
    text.TrimLeft();
    text.TrimRight();
    EXPECT_STREQ(text.c_str(), "a b");
    text.TrimRight('b');
    text.TrimLeft("xa");
    EXPECT_STREQ(text.c_str(), " ");
}

TEST(String, FormatsNumbersAndTexts)
{
    EXPECT_EQ(formatted("%d%% of %s, %c", 42, "it", 'x'), "42% of it, x");
    EXPECT_EQ(formatted("%-5d|%05d|%x|%ld", 1, 2, 255, 1234567890123L),
              "1    |00002|ff|1234567890123");
    EXPECT_EQ(formatted("%*d|%.*s", 4, 7, 2, "abcdef"), "   7|ab");
}

TEST(String, AFixedNumberReservesRoomForSixMorePlaces)
{
    String text;
    text.Format("%5.2f", 3.14159);
    EXPECT_STREQ(text.c_str(), " 3.14");
    EXPECT_GE(text.GetAllocLength(), 10); // 3.14159000
}

TEST(String, SignsAndExponentsFitBesideALongPrecision)
{
    EXPECT_EQ(formatted("%.40d", -1).size(), 41u);
    EXPECT_EQ(formatted("%.200e", -1.0).size(), 207u);
    EXPECT_EQ(formatted("%+f", HUGE_VAL), "+inf");
}

TEST(String, AHugeFixedNumberFits)
{
    String text;
    text.Format("%f", 1e308);
    EXPECT_EQ(text.GetLength(), 316); // 309 digits, a point and six more
}

TEST(String, PlainCharactersReserveTheRestOfTheFormat)
{
    String text;
    text.Format("abc");
    EXPECT_EQ(text.GetAllocLength(), 6); // 3 + 2 + 1
}

TEST(String, ALongFormatCostsNoMoreThanItsResult)
{
    const std::string format(100'000, 'x');
    String text;
    text.Format("%s", "");
    text = String();
    text.Format(format.c_str(), 0);
    EXPECT_EQ(text.GetLength(), 100'000);
    EXPECT_LT(text.GetAllocLength(), 1 << 21);
}

TEST(String, FormattingItsOwnTextWorks)
{
    String text("abc");
    text.Format("<%s>", text.c_str());
    EXPECT_STREQ(text.c_str(), "<abc>");
}

TEST(String, StringsThatShareMayBeUsedOnTwoThreads)
{
    const String text("a name that both threads use");
    auto copyAndChange = [text] {
        for (int i = 0; i < 10'000; ++i) {
            String copy = text;
            if (i % 16 == 0)
                copy.SetAt(0, 'X');
        }
    };
    std::thread other(copyAndChange);
    copyAndChange();
    other.join();
    EXPECT_EQ(text[0], 'a');
}

using StringDeathTest = testing::Test;

TEST(StringDeathTest, BrokenContractsPrintTheirLineAndStop)
{
    String text("abc");
    const String& constant = text;
    EXPECT_DEATH(static_cast<void>(constant[-1]),
                 "shared/System/kvString:[0-9]+: failed assertion `nIndex >= 0'");
    EXPECT_DEATH(static_cast<void>(constant[3]),
                 "nIndex < \\(int\\)\\(GetData\\(\\)->nDataLength\\)");
    EXPECT_DEATH(text.SetAt(-1, 'x'), "`nIndex >= 0'");
    EXPECT_DEATH(text.GetBuffer(-1), "`nMinBufLength >= 0'");
    EXPECT_DEATH(text.ReleaseBuffer(4), "nNewLength <= \\(int\\)\\(GetData\\(\\)->nAllocLength\\)");
    EXPECT_DEATH(text.UnlockBuffer(), "`GetData\\(\\)->nRefs == -1'");
    EXPECT_DEATH(text.Compare(nullptr), "gIsValidString\\(lpsz\\)");
    EXPECT_DEATH(text.Find(static_cast<const char*>(nullptr)), "gIsValidString\\(lpszSub\\)");
    EXPECT_DEATH(text.FindOneOf(nullptr), "gIsValidString\\(lpszCharSet\\)");
    EXPECT_DEATH(String(nullptr, 1), "gIsValidAddress\\(lpch, nLength, FALSE\\)");
}

TEST(StringDeathTest, UnknownFormatsStop)
{
    EXPECT_DEATH(formatted("%I64d", 1), "`FALSE'");
    EXPECT_DEATH(formatted("%y", 1), "`FALSE'");
    EXPECT_DEATH(formatted("%*d", -1, 1), "`nWidth >= 0'");
    EXPECT_DEATH(formatted("%.*d", -1, 1), "`nPrecision >= 0'");
    EXPECT_DEATH(formatted(nullptr), "gIsValidString\\(lpszFormat\\)");
}

TEST(StringDeathTest, AStringWithoutABufferStops)
{
    alignas(String) unsigned char nothing[sizeof(String)] = {};
    const auto* broken = std::launder(reinterpret_cast<const String*>(nothing));
    EXPECT_DEATH(broken->c_str(), "`m_pchData != 0'");
}

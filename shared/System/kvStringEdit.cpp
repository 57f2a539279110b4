// Search, extraction and modification of strings.
#include "shared/System/kvString.h"
#include "shared/System/kvStringAssert.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace Korvanel {

namespace {

bool isSpace(char ch)
{
    return std::isspace(static_cast<unsigned char>(ch)) != 0;
}

int indexOf(const char* found, const char* start)
{
    return found == nullptr ? -1 : static_cast<int>(found - start);
}

/// How many characters at the end of `text` satisfy `test`.
template <typename Test>
int trailing(const char* text, int length, Test test)
{
    int count = 0;
    while (count < length && test(text[length - 1 - count]))
        ++count;
    return count;
}

template <typename Test>
int leading(const char* text, int length, Test test)
{
    int count = 0;
    while (count < length && test(text[count]))
        ++count;
    return count;
}

/// A test for "any character of the set"; the set's own terminator is not part of it.
auto anyOf(const char* set)
{
    return [set](char ch) { return ch != 0 && std::strchr(set, ch) != nullptr; };
}

} // namespace

// Search ------------------------------------------------------------------------------------------

int String::Find(char ch, int nStart) const
{
    if (nStart >= GetLength())
        return -1;
    nStart = std::max(nStart, 0);
    return indexOf(std::strchr(m_pchData + nStart, ch), m_pchData);
}

int String::Find(const char* lpszSub, int nStart) const
{
    KV_STRING_ASSERT_TEXT(lpszSub != nullptr, "gIsValidString(lpszSub)");
    if (nStart >= GetLength())
        return -1;
    nStart = std::max(nStart, 0);
    return indexOf(std::strstr(m_pchData + nStart, lpszSub), m_pchData);
}

int String::ReverseFind(char ch) const
{
    return indexOf(std::strrchr(c_str(), ch), m_pchData);
}

int String::FindOneOf(const char* lpszCharSet) const
{
    KV_STRING_ASSERT_TEXT(lpszCharSet != nullptr, "gIsValidString(lpszCharSet)");
    return indexOf(std::strpbrk(c_str(), lpszCharSet), m_pchData);
}

// Extraction --------------------------------------------------------------------------------------

String String::Mid(int nFirst) const
{
    return Mid(nFirst, GetLength());
}

String String::Mid(int nFirst, int nCount) const
{
    nFirst = std::clamp(nFirst, 0, GetLength());
    nCount = std::clamp(nCount, 0, GetLength() - nFirst);
    if (nCount == GetLength())
        return *this;
    return String(m_pchData + nFirst, nCount);
}

String String::Left(int nCount) const
{
    return Mid(0, nCount);
}

String String::Right(int nCount) const
{
    nCount = std::clamp(nCount, 0, GetLength());
    return Mid(GetLength() - nCount, nCount);
}

String String::SpanIncluding(const char* lpszCharSet) const
{
    KV_STRING_ASSERT_TEXT(lpszCharSet != nullptr, "gIsValidString(lpszCharSet)");
    return Left(static_cast<int>(std::strspn(c_str(), lpszCharSet)));
}

String String::SpanExcluding(const char* lpszCharSet) const
{
    KV_STRING_ASSERT_TEXT(lpszCharSet != nullptr, "gIsValidString(lpszCharSet)");
    return Left(static_cast<int>(std::strcspn(c_str(), lpszCharSet)));
}

// Modification ------------------------------------------------------------------------------------

int String::insertBytes(int nIndex, const char* bytes, int nCount)
{
    const int length = GetLength();
    if (nCount == 0)
        return length;
    nIndex = std::clamp(nIndex, 0, length);
    const String kept(bytes, nCount); // the inserted text may lie in the buffer that moves
    char* buffer = GetBuffer(length + nCount);
    std::memmove(buffer + nIndex + nCount, buffer + nIndex,
                 static_cast<std::size_t>(length - nIndex));
    std::memcpy(buffer + nIndex, kept.m_pchData, static_cast<std::size_t>(nCount));
    ReleaseBuffer(length + nCount);
    return length + nCount;
}

int String::Insert(int nIndex, char ch)
{
    return insertBytes(nIndex, &ch, 1);
}

int String::Insert(int nIndex, const char* text)
{
    return insertBytes(nIndex, text, text == nullptr ? 0 : static_cast<int>(std::strlen(text)));
}

int String::Delete(int nIndex, int nCount)
{
    nIndex = std::max(nIndex, 0);
    const int length = GetLength();
    if (nCount < 1 || nIndex >= length)
        return length;
    nCount =
        std::min(nCount, length - nIndex); // callers keep within the string; never read past it
    CopyBeforeWrite();
    std::memmove(m_pchData + nIndex, m_pchData + nIndex + nCount,
                 static_cast<std::size_t>(length - nIndex - nCount));
    ReleaseBuffer(length - nCount);
    return length;
}

int String::Replace(char chOld, char chNew)
{
    const auto count = std::count(c_str(), c_str() + GetLength(), chOld);
    if (chOld == chNew || count == 0)
        return 0;
    CopyBeforeWrite();
    std::replace(m_pchData, m_pchData + GetLength(), chOld, chNew);
    return static_cast<int>(count);
}

int String::Replace(const char* lpszOld, const char* lpszNew)
{
    const int oldLength = lpszOld == nullptr ? 0 : static_cast<int>(std::strlen(lpszOld));
    if (oldLength == 0)
        return 0;
    const int newLength = lpszNew == nullptr ? 0 : static_cast<int>(std::strlen(lpszNew));
    int count = 0;
    for (int at = Find(lpszOld); at >= 0; at = Find(lpszOld, at + oldLength))
        ++count;
    if (count == 0)
        return 0;

    String replaced;
    const int total = GetLength() + count * (newLength - oldLength);
    char* out = replaced.GetBuffer(total);
    int from = 0;
    for (int at = Find(lpszOld); at >= 0; at = Find(lpszOld, from)) {
        out = std::copy_n(m_pchData + from, at - from, out);
        out = std::copy_n(lpszNew, newLength, out);
        from = at + oldLength;
    }
    std::copy_n(m_pchData + from, GetLength() - from, out);
    replaced.ReleaseBuffer(total);
    *this = replaced;
    return count;
}

int String::Remove(char chRemove)
{
    CopyBeforeWrite();
    char* end = m_pchData + GetLength();
    const auto kept = static_cast<int>(std::remove(m_pchData, end, chRemove) - m_pchData);
    const int removed = GetLength() - kept;
    if (removed > 0)
        ReleaseBuffer(kept);
    return removed;
}

void String::TrimRight()
{
    if (const int count = trailing(c_str(), GetLength(), isSpace))
        ReleaseBuffer(GetLength() - count);
}

void String::TrimRight(char chTarget)
{
    const auto same = [chTarget](char ch) { return ch == chTarget; };
    if (const int count = trailing(c_str(), GetLength(), same))
        ReleaseBuffer(GetLength() - count);
}

void String::TrimRight(const char* lpszTargets)
{
    if (const int count = trailing(c_str(), GetLength(), anyOf(lpszTargets)))
        ReleaseBuffer(GetLength() - count);
}

void String::TrimLeft()
{
    Delete(0, leading(c_str(), GetLength(), isSpace));
}

void String::TrimLeft(char chTarget)
{
    Delete(0, leading(c_str(), GetLength(), [chTarget](char ch) { return ch == chTarget; }));
}

void String::TrimLeft(const char* lpszTargets)
{
    Delete(0, leading(c_str(), GetLength(), anyOf(lpszTargets)));
}

} // namespace Korvanel

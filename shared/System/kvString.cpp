#include "shared/System/kvString.h"

#include "shared/System/kvStringAssert.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>

namespace Korvanel {

namespace {

struct NilString
{
    StringData data{{-1}, 0, 0}; // counts as locked, so that no copy ever touches its count
    char terminator = 0;
};

NilString sNil;
StringData* const sDataNil = &sNil.data;

char* nilCharacters()
{
    return sDataNil->data();
}

int lengthOf(const char* text)
{
    return text == nullptr ? 0 : static_cast<int>(std::strlen(text));
}

} // namespace

static_assert(sizeof(StringData) == 12 && offsetof(NilString, terminator) == sizeof(StringData));

// Storage -----------------------------------------------------------------------------------------

StringData* String::GetData() const
{
    KV_STRING_ASSERT(m_pchData != 0);
    return reinterpret_cast<StringData*>(m_pchData) - 1;
}

void String::AllocBuffer(int nLen)
{
    KV_STRING_ASSERT(nLen <= INT_MAX - 1);
    if (nLen == 0) {
        m_pchData = nilCharacters();
        return;
    }
    const auto length = static_cast<std::size_t>(nLen);
    void* block = ::operator new(sizeof(StringData) + length + 1);
    auto* made = new (block) StringData{{1}, nLen, nLen};
    m_pchData = made->data();
    m_pchData[nLen] = 0;
}

void String::FreeData(StringData* pData)
{
    pData->~StringData();
    ::operator delete(pData);
}

void String::Release()
{
    if (GetData() == sDataNil)
        return;
    KV_STRING_ASSERT(GetData()->nRefs != 0);
    StringData* old = GetData();
    m_pchData = nilCharacters();
    if (--old->nRefs <= 0)
        FreeData(old);
}

void String::Release(StringData* pData)
{
    if (pData == sDataNil)
        return;
    KV_STRING_ASSERT(pData->nRefs != 0);
    if (--pData->nRefs <= 0)
        FreeData(pData);
}

void String::CopyBeforeWrite()
{
    if (GetData()->nRefs > 1) {
        StringData* shared = GetData();
        AllocBuffer(shared->nDataLength);
        std::memcpy(m_pchData, shared->data(), static_cast<std::size_t>(shared->nDataLength) + 1);
        Release(shared);
    }
    KV_STRING_ASSERT(GetData()->nRefs <= 1);
}

void String::AllocBeforeWrite(int nLen)
{
    if (GetData()->nRefs > 1 || nLen > GetData()->nAllocLength) {
        Release();
        AllocBuffer(nLen);
    }
    KV_STRING_ASSERT(GetData()->nRefs <= 1);
}

void String::AssignCopy(int nSrcLen, const char* lpszSrcData)
{
    // The source may lie in the buffer that is about to be replaced.
    if (GetData()->nRefs > 1 || nSrcLen > GetData()->nAllocLength) {
        StringData* old = GetData();
        AllocBuffer(nSrcLen);
        std::memcpy(m_pchData, lpszSrcData, static_cast<std::size_t>(nSrcLen));
        Release(old);
    } else if (nSrcLen > 0) {
        std::memmove(m_pchData, lpszSrcData, static_cast<std::size_t>(nSrcLen));
    }
    if (GetData() == sDataNil)
        return;
    GetData()->nDataLength = nSrcLen;
    m_pchData[nSrcLen] = 0;
}

void String::ConcatCopy(int nSrc1Len, const char* lpszSrc1Data, int nSrc2Len,
                        const char* lpszSrc2Data)
{
    AllocBuffer(nSrc1Len + nSrc2Len);
    std::copy_n(lpszSrc1Data, nSrc1Len, m_pchData);
    std::copy_n(lpszSrc2Data, nSrc2Len, m_pchData + nSrc1Len);
}

void String::ConcatInPlace(int nSrcLen, const char* lpszSrcData)
{
    if (nSrcLen == 0)
        return;
    StringData* old = GetData();
    const int joined = old->nDataLength + nSrcLen;
    if (old->nRefs > 1 || joined > old->nAllocLength) {
        ConcatCopy(old->nDataLength, old->data(), nSrcLen, lpszSrcData);
        Release(old); // only now: the appended text may lie in it
        return;
    }
    std::memmove(m_pchData + old->nDataLength, lpszSrcData, static_cast<std::size_t>(nSrcLen));
    old->nDataLength = joined;
    m_pchData[joined] = 0;
}

// Construction and assignment ---------------------------------------------------------------------

String::String()
    : m_pchData(nilCharacters())
{
}

String::String(const String& stringSrc)
    : m_pchData(nilCharacters())
{
    KV_STRING_ASSERT(stringSrc.GetData()->nRefs != 0);
    if (stringSrc.GetData()->nRefs < 0) {
        AssignCopy(stringSrc.GetLength(), stringSrc.m_pchData);
        return;
    }
    KV_STRING_ASSERT(stringSrc.GetData() != sDataNil);
    m_pchData = stringSrc.m_pchData;
    ++GetData()->nRefs;
}

String::String(const char* text)
    : m_pchData(nilCharacters())
{
    AssignCopy(lengthOf(text), text);
}

String::String(const char* lpch, int nLength)
    : m_pchData(nilCharacters())
{
    if (nLength == 0)
        return;
    KV_STRING_ASSERT_TEXT(lpch != nullptr, "gIsValidAddress(lpch, nLength, FALSE)");
    AssignCopy(std::max(nLength, 0), lpch);
}

String::String(char ch, int nRepeat)
    : m_pchData(nilCharacters())
{
    if (nRepeat < 1)
        return;
    AllocBuffer(nRepeat);
    std::memset(m_pchData, ch, static_cast<std::size_t>(nRepeat));
}

String::~String()
{
    Release(GetData());
}

String& String::operator=(const String& stringSrc)
{
    if (this == &stringSrc || m_pchData == stringSrc.m_pchData)
        return *this;
    const bool locked = GetData()->nRefs < 0 && GetData() != sDataNil;
    if (locked || stringSrc.GetData()->nRefs < 0) {
        AssignCopy(stringSrc.GetLength(), stringSrc.m_pchData);
        return *this;
    }
    Release();
    m_pchData = stringSrc.m_pchData;
    ++GetData()->nRefs;
    return *this;
}

String& String::operator=(const char* text)
{
    AssignCopy(lengthOf(text), text);
    return *this;
}

String& String::operator=(char ch)
{
    AssignCopy(1, &ch);
    return *this;
}

String& String::operator+=(const String& other)
{
    ConcatInPlace(other.GetLength(), other.m_pchData);
    return *this;
}

String& String::operator+=(const char* text)
{
    ConcatInPlace(lengthOf(text), text);
    return *this;
}

String& String::operator+=(char ch)
{
    ConcatInPlace(1, &ch);
    return *this;
}

String operator+(const String& a, const String& b)
{
    String joined;
    joined.ConcatCopy(a.GetLength(), a.c_str(), b.GetLength(), b.c_str());
    return joined;
}

String operator+(const String& a, const char* b)
{
    String joined;
    joined.ConcatCopy(a.GetLength(), a.c_str(), lengthOf(b), b);
    return joined;
}

String operator+(const char* a, const String& b)
{
    String joined;
    joined.ConcatCopy(lengthOf(a), a, b.GetLength(), b.c_str());
    return joined;
}

String operator+(const String& a, char b)
{
    String joined;
    joined.ConcatCopy(a.GetLength(), a.c_str(), 1, &b);
    return joined;
}

String operator+(char a, const String& b)
{
    String joined;
    joined.ConcatCopy(1, &a, b.GetLength(), b.c_str());
    return joined;
}

// Access ------------------------------------------------------------------------------------------

int String::GetLength() const
{
    return GetData()->nDataLength;
}

int String::GetAllocLength() const
{
    return GetData()->nAllocLength;
}

const char* String::c_str() const
{
    KV_STRING_ASSERT(m_pchData != 0);
    return m_pchData;
}

char String::operator[](int nIndex) const
{
    KV_STRING_ASSERT(nIndex >= 0);
    KV_STRING_ASSERT(nIndex < (int)(GetData()->nDataLength));
    return m_pchData[nIndex];
}

void String::SetAt(int nIndex, char ch)
{
    KV_STRING_ASSERT(nIndex >= 0);
    KV_STRING_ASSERT(nIndex < (int)(GetData()->nDataLength));
    CopyBeforeWrite();
    m_pchData[nIndex] = ch;
}

void String::Empty()
{
    if (GetData()->nDataLength == 0)
        return;
    if (GetData()->nRefs >= 0)
        Release();
    else
        AssignCopy(0, "");
    KV_STRING_ASSERT(GetData()->nDataLength == 0);
    KV_STRING_ASSERT(GetData()->nRefs < 0 || GetData()->nAllocLength == 0);
}

int String::Compare(const char* lpsz) const
{
    KV_STRING_ASSERT_TEXT(lpsz != nullptr, "gIsValidString(lpsz)");
    return std::strcmp(c_str(), lpsz);
}

bool operator==(const String& a, const String& b)
{
    return a.Compare(b.c_str()) == 0;
}

// Buffer protocol ---------------------------------------------------------------------------------

char* String::GetBuffer(int nMinBufLength)
{
    KV_STRING_ASSERT(nMinBufLength >= 0);
    StringData* old = GetData();
    if (old->nRefs > 1 || nMinBufLength > old->nAllocLength) {
        const int length = old->nDataLength;
        AllocBuffer(std::max(nMinBufLength, length));
        std::memcpy(m_pchData, old->data(), static_cast<std::size_t>(length) + 1);
        GetData()->nDataLength = length;
        Release(old);
    }
    KV_STRING_ASSERT(GetData()->nRefs <= 1);
    return m_pchData;
}

void String::ReleaseBuffer(int nNewLength)
{
    CopyBeforeWrite();
    if (nNewLength == -1)
        nNewLength = static_cast<int>(std::strlen(m_pchData));
    KV_STRING_ASSERT(nNewLength <= (int)(GetData()->nAllocLength));
    if (GetData() == sDataNil)
        return; // its length and its terminator are 0 already, and every thread shares it
    GetData()->nDataLength = nNewLength;
    m_pchData[nNewLength] = 0;
}

char* String::GetBufferSetLength(int nNewLength)
{
    GetBuffer(nNewLength);
    ReleaseBuffer(nNewLength);
    return m_pchData;
}

void String::FreeExtra()
{
    KV_STRING_ASSERT(GetData()->nDataLength <= GetData()->nAllocLength);
    StringData* old = GetData();
    if (old->nDataLength == old->nAllocLength)
        return;
    AllocBuffer(old->nDataLength);
    if (GetData() != sDataNil)
        std::memcpy(m_pchData, old->data(), static_cast<std::size_t>(old->nDataLength));
    Release(old);
}

char* String::LockBuffer()
{
    char* buffer = GetBuffer(0);
    if (GetData() != sDataNil)
        GetData()->nRefs = -1;
    return buffer;
}

void String::UnlockBuffer()
{
    KV_STRING_ASSERT(GetData()->nRefs == -1);
    if (GetData() != sDataNil)
        GetData()->nRefs = 1;
}

} // namespace Korvanel

/// The byte string of every name, path and text in the system: shared storage, copied on write. It
/// has no encoding of its own; file names and UTF-8 pass through it unchanged.
#pragma once
#include <atomic>
#include <cstdarg>
#include <cstdint>

namespace Korvanel {

/// Header of a string's storage; `nAllocLength + 1` characters follow it in the same block.
struct StringData
{
    std::atomic<std::int32_t> nRefs; ///< strings that share this; -1 while locked
    std::int32_t nDataLength;        ///< bytes, without the terminator
    std::int32_t nAllocLength;       ///< capacity in bytes, without the terminator

    char* data() { return reinterpret_cast<char*>(this + 1); }
};

/// Lengths and indices count bytes. Copies share storage and cost the same for any length; buffers
/// are sized exactly, so a caller that appends in a loop reserves with GetBuffer first. A broken
/// contract (an index out of range, a null text) stops the process with an assertion line. Running
/// out of memory throws std::bad_alloc. Thread: any, but one String object belongs to one thread at
/// a time; objects that share storage need not.
class String
{
public:
    String();
    String(const String& stringSrc);
    String(const char* text); ///< null counts as empty
    /// Copies `nLength` bytes, which may hold NULs.
    String(const char* lpch, int nLength);
    String(char ch, int nRepeat); ///< empty for nRepeat <= 0
    ~String();

    String& operator=(const String& stringSrc);
    String& operator=(const char* text);
    String& operator=(char ch);

    String& operator+=(const String& other);
    String& operator+=(const char* text);
    String& operator+=(char ch);
    friend String operator+(const String& a, const String& b);
    friend String operator+(const String& a, const char* b);
    friend String operator+(const char* a, const String& b);
    friend String operator+(const String& a, char b);
    friend String operator+(char a, const String& b);

    // Access ------------------------------------------------------------------------------------
    int GetLength() const;
    int GetAllocLength() const; ///< capacity in bytes, without the terminator

    bool IsEmpty() const { return GetLength() == 0; }

    /// Valid until the string changes; never null, always terminated.
    const char* c_str() const;
    char operator[](int nIndex) const; ///< 0 <= nIndex < GetLength()
    void SetAt(int nIndex, char ch);   ///< 0 <= nIndex < GetLength()
    void Empty();

    /// Byte-wise and case-sensitive, up to the first NUL: below, equal to or above 0.
    int Compare(const char* lpsz) const;
    friend bool operator==(const String& a, const String& b);

    // Buffer protocol ---------------------------------------------------------------------------
    /// Writable characters, at least `nMinBufLength` of them besides the terminator. Follow with
    /// ReleaseBuffer.
    char* GetBuffer(int nMinBufLength);
    void ReleaseBuffer(int nNewLength = -1); ///< -1: up to the terminator
    char* GetBufferSetLength(int nNewLength);
    void FreeExtra();
    /// From here to UnlockBuffer copies of this string copy the characters, so that the buffer
    /// stays its own.
    char* LockBuffer();
    void UnlockBuffer();

    // Search: an index, or -1 -------------------------------------------------------------------
    int Find(char ch, int nStart = 0) const;
    int Find(const char* lpszSub, int nStart = 0) const;
    int ReverseFind(char ch) const;
    int FindOneOf(const char* lpszCharSet) const;

    // Extraction --------------------------------------------------------------------------------
    String Mid(int nFirst) const;
    String Mid(int nFirst, int nCount) const; ///< cut to what is there; negative counts as 0
    String Left(int nCount) const;
    String Right(int nCount) const;
    String SpanIncluding(const char* lpszCharSet) const;
    String SpanExcluding(const char* lpszCharSet) const;

    // Modification ------------------------------------------------------------------------------
    int Insert(int nIndex, char ch);          ///< the new length
    int Insert(int nIndex, const char* text); ///< the new length
    /// Removes `nCount` bytes from `nIndex` on. @return the length before
    int Delete(int nIndex, int nCount = 1);
    int Replace(char chOld, char chNew);                   ///< how many were replaced
    int Replace(const char* lpszOld, const char* lpszNew); ///< how many were replaced
    int Remove(char chRemove);                             ///< how many were removed
    void TrimRight();
    void TrimRight(char chTarget);
    void TrimRight(const char* lpszTargets);
    void TrimLeft();
    void TrimLeft(char chTarget);
    void TrimLeft(const char* lpszTargets);

    /// As printf. 64-bit conversions with the prefix I64 are refused with an assertion.
    void Format(const char* lpszFormat, ...) __attribute__((format(printf, 2, 3)));
    void FormatV(const char* lpszFormat, std::va_list argList)
        __attribute__((format(printf, 2, 0)));

private:
    StringData* GetData() const;
    void AllocBuffer(int nLen);
    static void FreeData(StringData* pData);
    void Release();
    static void Release(StringData* pData);
    void CopyBeforeWrite();
    void AllocBeforeWrite(int nLen);
    void AssignCopy(int nSrcLen, const char* lpszSrcData);
    void ConcatCopy(int nSrc1Len, const char* lpszSrc1Data, int nSrc2Len, const char* lpszSrc2Data);
    void ConcatInPlace(int nSrcLen, const char* lpszSrcData);
    int insertBytes(int nIndex, const char* bytes, int nCount);

    char* m_pchData;
};

} // namespace Korvanel

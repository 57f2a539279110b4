/// Assertions of the string's own files, which all report under the one name
/// `shared/System/kvString`.
#pragma once
#include "shared/System/kvAssert.h"

#define KV_STRING_ASSERT_TEXT(condition, text)                                                     \
    KV_ASSERT_TEXT("shared/System/kvString", condition, text)
#define KV_STRING_ASSERT(condition) KV_STRING_ASSERT_TEXT(condition, #condition)

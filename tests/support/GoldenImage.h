/// Drawings beside the pictures that were approved of them, kept as PNG files. With KV_WRITE_GOLDEN
/// set in the environment they are written instead of compared.
#pragma once
#include "platform/toolkit/Surface.h"

#include <gtest/gtest.h>

#include <string>

/// A place for one letter of a drawing: '.' where red, green and blue are 0, '#' elsewhere. Rows
/// end in a line feed.
std::string letterArt(const toolkit::Surface& surface);

/// Compares with tests/data/golden/<name>.png.
/// @param tolerance  by how much each channel of a pixel may differ; 0 for exact drawings
testing::AssertionResult looksLike(const std::string& name, const toolkit::Surface& surface,
                                   int tolerance = 0);

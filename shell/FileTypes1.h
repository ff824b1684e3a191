#pragma once

#include "FileType.h"

// The three kinds of document the program declares, built once before the application object.
namespace FileTypes1 {
const toolkit::FileType& Rtf();
const toolkit::FileType& Rtfd();
const toolkit::FileType& text();
} // namespace FileTypes1

// Rtf, Rtfd and text, in this order.
const std::vector<toolkit::FileType>& pAllFileTypes();

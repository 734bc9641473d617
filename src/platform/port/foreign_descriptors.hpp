// SPDX-License-Identifier: MIT
// Descriptors that came with a message and are not the memory that was asked for.
//
// To close one may take as long as its sender likes: a connection may linger, a file may lie in a file
// system that is a program. So nobody who has other things to do closes one.
#pragma once

#include "platform/fs/file.hpp"

namespace vellum {

// True for a memory file, sealed or not: what is closed at once.
bool IsMemoryFile(int descriptor) noexcept;

// Has a descriptor closed on a thread of its own; on this one where there is no thread to be had.
void CloseApart(TDescriptor descriptor) noexcept;

} // namespace vellum

// SPDX-License-Identifier: MIT
// Copying a file with everything that belongs to it.
#pragma once

#include <string>

namespace vellum {

// Copies a regular file, following links: its bytes, mode, times, extended attributes, access control lists
// and its second fork, but not its owner. What cannot be kept where the copy goes (attributes that the file
// system does not have, those that are not ours to set) is left out; a fork that can't be an attribute
// there is a file (platform/fs/file_fork.hpp). The copy is made beside its destination and renamed to it,
// so that at the destination lies what lay there before, or the whole copy; the file of a fork is renamed
// after it. 0, or the errno of the failure. May throw std::bad_alloc.
int CopyFile(const std::string &source, const std::string &destination);

// Removes a file; one that is not there is no failure. 0 or the errno.
int RemoveFile(const std::string &path) noexcept;

// Whether two paths lead to one file; false when either leads nowhere.
bool AreSameFile(const std::string &a, const std::string &b) noexcept;

// Whether two files hold the same bytes; false when either can't be read.
bool HaveEqualBytes(const std::string &a, const std::string &b);

} // namespace vellum

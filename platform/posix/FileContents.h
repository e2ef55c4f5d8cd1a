#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "platform/posix/SystemCalls.h"

namespace vantrel::posix {

/// As `read`, but goes on when a signal interrupts it.
ssize_t readOnce(SystemCalls& calls, int descriptor, void* buffer, std::size_t size);

/// Writes all of it: 0, or -1 and `errno`.
int writeAll(SystemCalls& calls, int descriptor, const char* bytes, std::size_t size);

/// Opens a file to read it; `flags` as for `open`. -1 and `errno` on failure, with EISDIR for a folder and ENODEV for
/// anything else that is not a file: a pipe, which could keep us waiting, or a device. `status` is told about the file.
int openToRead(SystemCalls& calls, const std::string& path, struct stat& status, int flags = 0);

/// What is left to read of an open file; of one that is longer than `mostBytes`, only so much that this shows. Nothing,
/// and `errno`, when it can't be read. `status` is what was told about the file.
std::optional<std::string> contentsOf(SystemCalls& calls, int descriptor, const struct stat& status,
                                      std::size_t mostBytes);

/// What is in the file at `path`. Nothing when it is missing, can't be read, isn't a file, or is longer than
/// `mostBytes`.
std::optional<std::string> contentsOfFile(SystemCalls& calls, const std::string& path, std::size_t mostBytes);

/// Whether nothing has happened to a file between two looks at it, or at its place. The times that say so may be as
/// old as the last tick of the clock.
bool isUnchanged(const struct stat& before, const struct stat& now);

}  // namespace vantrel::posix

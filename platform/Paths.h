// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

// Paths as UTF-8 text. "Native" is the form the system opens: '/' on POSIX; both separators on Windows.
// "Backslash form" is what instrument files hold. The text helpers look at no disk.
namespace zarno {

/// Every native separator becomes a backslash. Idempotent.
std::string toBackslashForm(std::string_view nativePath);
/// The reverse: every backslash becomes the native separator.
std::string fromBackslashForm(std::string_view backslashPath);

/// What stands before the last separator: "/a/b" gives "/a", "/a" gives "/", "a" gives "".
std::string parentPath(std::string_view nativePath);
/// What stands after the last separator.
std::string fileName(std::string_view nativePath);
/// The file name without its last extension; a leading dot is no extension.
std::string fileStem(std::string_view nativePath);
/// `child` below `folder`, with one separator between them; just `child` when `folder` is empty.
std::string joinPath(std::string_view folder, std::string_view child);
/// Every part of the path on its own as toUtf8 has it: folders and files may have been named by systems with
/// different encodings. On POSIX the result still opens (see File::open).
std::string toUtf8Path(std::string_view nativePath);

/// These ask the disk; names are read as File::open reads them.
bool isRegularFile(std::string_view path);
bool isFolder(std::string_view path);
inline bool pathExists(std::string_view path) {
    return isRegularFile(path) || isFolder(path);
}

} // namespace zarno

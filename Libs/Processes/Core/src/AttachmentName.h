#pragma once

#include <cstddef>
#include <string_view>

// Names of files as a header gives them. A header comes from a crashed game, or from anyone who can write
// into its dumps folder, so a name is checked before anything is opened by it.

// In bytes of UTF-8. The limit also bounds the blacklist's search, which needs stack for every byte.
inline constexpr std::size_t MaxAttachmentNameLength = 512;

// True for a relative path in UTF-8 whose every part is a plain file name: logs/dxdiag.txt, logs\太郎.txt.
// False for absolute paths, drives and streams (":"), "." and "..", empty parts, parts that end in a dot or a
// blank, wildcard and control characters, and the names of devices (NUL, com1.txt, CONIN$). Links are not
// looked at.
bool IsSafeAttachmentName(std::string_view name);

// True if the name ends in "gz", in either case, after a character other than a dot, as in data.tgz. A name
// that ends in ".gz" does not look compressed: the package stores the file under its name in the header with
// ".gz" added, so it is compressed once more.
bool LooksCompressed(std::string_view name);

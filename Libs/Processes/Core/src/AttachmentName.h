#pragma once

#include <cstddef>
#include <string_view>

// Names of files as a header gives them. A header comes from a crashed game, or from whoever can write into
// its dumps folder, so a name is judged before anything is opened by it.

// Longer names, in bytes of UTF-8, are refused. Also keeps the black list's search, which needs stack for
// every byte, far from the end of a thread's stack.
inline constexpr std::size_t MaxAttachmentNameLength = 512;

// True for a relative path in UTF-8 whose every part is a plain file name: logs/dxdiag.txt, logs\太郎.txt.
// False for absolute paths, drives and streams (":"), "." and "..", empty parts, parts that end in a dot or a
// blank, wildcard and control characters, and the names of devices (NUL, com1.txt, CONIN$). Says nothing
// about links.
bool IsSafeAttachmentName(std::string_view name);

// True when the name ends in "gz", in either case, after a character other than a dot, as in data.tgz. A name
// that ends in ".gz" does not look compressed: such a file is compressed once more, under the name the header
// expects.
bool LooksCompressed(std::string_view name);

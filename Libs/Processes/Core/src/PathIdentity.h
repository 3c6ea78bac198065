#pragma once

#include <string>

// What a path really leads to. Paths are UTF-8; any thread may ask.
namespace PathIdentity {

// True for a junction or a symbolic link itself, whatever it points to.
bool IsLink(const std::string& path);

// True when the file exists and is reached without a link: no part of the relative name is one, and the
// opened file lies under the folder. Links on the way to the folder itself don't matter.
bool LiesInside(const std::string& folder, const std::string& relativeName);

// Of an existing file or folder, through links: the same for all of its paths and for no other. Empty when
// there is none.
std::string IdentityOf(const std::string& path);

// True when both folders exist and are one, however their paths are written.
bool IsSameFolder(const std::string& left, const std::string& right);

} // namespace PathIdentity

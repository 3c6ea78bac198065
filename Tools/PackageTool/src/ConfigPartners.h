#pragma once

#include <string>
#include <string_view>

#include "Tools/PackageTool/src/ConfigSections.h"

// Reports what does not fit between the sections: missing partners, values that fail at the first use, and
// folders that do not meet. May throw std::bad_alloc.
void CheckPartners(const ConfigSections& sections, const ConfigReport& report);

// What a relative folder is relative to.
enum class FolderBase { ApplicationFolder, CurrentFolder };

// Equal texts for paths that lead to one folder, as far as the text shows: separators, ASCII letter case, "."
// and ".." make no difference. "dumps" in the application folder is "<application folder>/dumps".
std::string ComparableFolder(std::string_view folder, FolderBase base);

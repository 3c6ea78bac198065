#pragma once

#include <vector>

#include "Libs/Processes/Core/src/BugHeader.h"

// The files of a catalog in the order in which a package holds them: the log comes before the dump, although
// the header has them the other way round. Records without a file stand for none and are left out. Points
// into the catalog.
std::vector<const Attachment*> FilesInPackageOrder(const Catalog& catalog);

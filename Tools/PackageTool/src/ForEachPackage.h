#pragma once

#include <functional>
#include <span>
#include <string>

#include "Tools/PackageTool/src/Commands.h"
#include "Tools/PackageTool/src/PackageReport.h"

using PackageWork = std::function<PackageReport(const std::string& file, std::span<const uint8_t> package)>;
using PackageText = std::function<std::string(const PackageReport& report)>;

// Reads each package, has the work done, and says what came of it: as text at once, as JSON at the end.
ExitCode ForEachPackage(const Arguments& arguments, const PackageWork& work, const PackageText& say);

#include "Libs/Processes/Core/src/WatchedApplications.h"

#include <algorithm>
#include <utility>

#include "Libs/Framework/Core/src/CommandLine.h"

std::vector<std::string> CollectWatchedApplications(std::vector<std::string> configured, int argc,
                                                    const char* const* argv) {
    std::vector<std::string> names = std::move(configured);
    for (int i = 0; i < argc; ++i) {
        const char* name = CommandLine::ValueOfArgument(argv[i], "-process");
        if (name && std::find(names.begin(), names.end(), name) == names.end()) {
            names.emplace_back(name);
        }
    }
    return names;
}

#pragma once

#include <string>
#include <vector>

// Which programs a process monitor watches: the configured names followed by what each -process=NAME argument
// adds. An argument's name that is in the list already, letter for letter, is not added again.
std::vector<std::string> CollectWatchedApplications(std::vector<std::string> configured, int argc,
                                                    const char* const* argv);

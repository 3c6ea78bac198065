#pragma once

#include <string>
#include <vector>

// The whole program behind main. Arguments are in UTF-8, without the program's own name.
int RunPackageTool(const std::vector<std::string>& words);

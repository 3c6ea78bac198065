#pragma once

#include <string>
#include <string_view>

#include "Tools/PackageTool/src/Console.h"

// Stores one tiny object with each uploader of a configuration, with the agent's own client, and prints the
// outcome, so that key, bucket, region and clock are tried before a player does it. The object's name is
// its MD5: a second try replaces the first one's. text has no problems. May throw std::bad_alloc.
ExitCode TryUploaders(const std::string& file, std::string_view text);

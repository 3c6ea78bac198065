#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_Folder.h"
#include "Tools/PackageTool/src/Arguments.h"
#include "Tools/PackageTool/src/Console.h"
#include "Tools/PackageTool/src/Report.h"

// The header and the files of each package. What is whole in a damaged package is unpacked. May throw
// std::bad_alloc.
ExitCode RunUnpack(const Arguments& arguments);

// A folder that files are unpacked into, and nothing outside of it. Names are taken as hostile; links in the
// folder are not followed; an existing file stays unless it may be replaced, and until the new one is
// complete. One thread.
class UnpackFolder {
public:
    UnpackFolder(std::string folder, bool mayReplace)
        : m_folder(std::move(folder)), m_mayReplace(mayReplace) {}

    static constexpr char NotWhole[] = "It can't be unpacked whole"; // the fill function gave up

    // Passes the file's bytes to write, piece by piece, and gives up if that fails. False if it gave up.
    using Fill = std::function<bool(const ContentSink& write)>;

    // Creates the file with all its folders and has it filled. A name that was used before, in any case of
    // ASCII letters, gets a number: game.log, then game~2.log. Returns "" and the file's path if it is whole;
    // else the reason, and nothing of it is left.
    std::string Write(const std::string& name, const Fill& fill, std::string& path);

private:
    std::string FreeName(const std::string& name);
    std::string MakeFolders(const std::string& name) const;
    std::string CheckTarget(const std::string& target, bool& exists);
    bool IsOurs(const std::string& target);

    std::string m_folder;
    bool m_mayReplace;
    std::map<std::string, unsigned> m_given; // names in lower case, with "/"; and the next number to try
    std::vector<std::string> m_written;      // not in m_identities yet
    std::set<Platform::FileIdentity> m_identities; // of the files written
};

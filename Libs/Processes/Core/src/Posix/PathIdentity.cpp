#include "Libs/Processes/Core/src/PathIdentity.h"

#include <cstdlib>
#include <memory>

#include <sys/stat.h>

#include "Libs/Processes/Core/src/FolderPath.h"

namespace PathIdentity {

namespace {

// Looks at the parts of the path that begin at start or behind it.
bool HasLinkOnTheWay(const std::string& path, std::size_t start) {
    for (std::size_t end = path.find('/', start); end != std::string::npos; end = path.find('/', end + 1)) {
        if (IsLink(path.substr(0, end))) {
            return true;
        }
    }
    return IsLink(path);
}

// Empty when the path leads nowhere.
std::string FinalPath(const std::string& path) {
    const std::unique_ptr<char, void (*)(void*)> resolved(realpath(path.c_str(), nullptr), &std::free);
    return resolved ? std::string(resolved.get()) : std::string();
}

} // namespace

bool IsLink(const std::string& path) {
    struct stat status = {};
    return lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

bool LiesInside(const std::string& folder, const std::string& relativeName) {
    const std::string path = FolderPath::Join(folder, relativeName);
    const std::string finalPath = FinalPath(path);
    return !finalPath.empty() && !HasLinkOnTheWay(path, path.size() - relativeName.size()) &&
           finalPath.starts_with(FolderPath::Join(FinalPath(folder), ""));
}

std::string IdentityOf(const std::string& path) {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0
               ? std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino)
               : std::string();
}

bool IsSameFolder(const std::string& left, const std::string& right) {
    const std::string identity = IdentityOf(left);
    return !identity.empty() && identity == IdentityOf(right);
}

} // namespace PathIdentity

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

bool IsSameFolder(const std::string& left, const std::string& right) {
    struct stat leftStatus = {};
    struct stat rightStatus = {};
    return stat(left.c_str(), &leftStatus) == 0 && stat(right.c_str(), &rightStatus) == 0 &&
           leftStatus.st_dev == rightStatus.st_dev && leftStatus.st_ino == rightStatus.st_ino;
}

} // namespace PathIdentity

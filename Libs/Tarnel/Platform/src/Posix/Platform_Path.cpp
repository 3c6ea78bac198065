#include "Libs/Tarnel/Platform/src/Common/Platform_Path.h"

#include <climits>
#include <exception>
#include <filesystem>
#include <system_error>

#include <unistd.h>

namespace Platform {

std::size_t ResolvePath(std::string& path) {
    while (path.size() > 1 && path.ends_with('/')) {
        path.pop_back();
    }
    return path.starts_with('/') ? 1 : 0;
}

std::string FullPath(const std::string& path) {
    std::error_code failure;
    const std::filesystem::path full = std::filesystem::absolute(path, failure);
    return failure ? path : full.lexically_normal().string();
}

std::string OwnProgramPath() noexcept try {
    char path[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof(path));
    return {path, length > 0 ? static_cast<std::size_t>(length) : 0};
} catch (const std::exception&) {
    return {};
}

} // namespace Platform

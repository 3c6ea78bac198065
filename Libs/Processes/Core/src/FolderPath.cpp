#include "Libs/Processes/Core/src/FolderPath.h"

#include <algorithm>
#include <cstddef>

namespace FolderPath {

namespace {

std::string Append(std::string_view folder, std::string_view name) {
    std::string path;
    path.reserve(folder.size() + 1 + name.size());
    path = folder;
    if (path.empty() || !IsSeparator(path.back())) {
        path += Separator;
    }
    path += name;
    return path;
}

} // namespace

std::string Join(std::string_view folder, std::string_view name) {
    std::string path = Append(folder, name);
    if constexpr (Separator != '\\') {
        std::replace(path.end() - static_cast<std::ptrdiff_t>(name.size()), path.end(), '\\', Separator);
    }
    return path;
}

bool IsRelative(std::string_view path) {
    const bool hasDrive = path.size() >= 2 && path[1] == ':';
    return !hasDrive && (path.empty() || !IsSeparator(path.front()));
}

std::string Resolve(std::string_view path, std::string_view baseFolder) {
    return IsRelative(path) ? Append(baseFolder, path) : std::string(path);
}

std::optional<std::string> LastComponent(std::string_view path) {
    while (!path.empty() && IsSeparator(path.back())) {
        path.remove_suffix(1);
    }
    const std::string_view name = path.substr(path.find_last_of("\\/") + 1);
    if (name.empty() || name == "." || name == ".." || name.back() == ':') {
        return std::nullopt;
    }
    return std::string(name);
}

} // namespace FolderPath

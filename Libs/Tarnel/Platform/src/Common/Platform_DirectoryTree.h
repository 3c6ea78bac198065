#pragma once

#include <exception>
#include <string>

// Creating a folder with its parents, once for narrow and wide paths.
namespace Platform {

#if defined(_WIN32)
template <class Char>
constexpr bool IsPathSeparator(Char c) {
    return c == Char('/') || c == Char('\\');
}
inline constexpr char PathSeparator = '\\';
#else
template <class Char>
constexpr bool IsPathSeparator(Char c) {
    return c == Char('/');
}
inline constexpr char PathSeparator = '/';
#endif

// createOne(prefix) creates one folder or finds it there already. What stands before the first separator,
// such as a drive, is never created.
template <class Char, class CreateOne>
[[nodiscard]] bool CreateTree(const Char* fullPath, CreateOne createOne) try {
    if (createOne(fullPath)) {
        return true;
    }
    if (!fullPath) { // createOne has reported it
        return false;
    }
    std::basic_string<Char> path(fullPath);
    const auto nextSeparator = [&path](std::size_t from) {
        while (from < path.size() && !IsPathSeparator(path[from])) {
            ++from;
        }
        return from;
    };
    std::size_t cut = nextSeparator(nextSeparator(0) + 1);
    if (cut >= path.size()) {
        return false;
    }
    std::size_t last = cut;
    for (; cut < path.size(); cut = nextSeparator(cut + 1)) {
        path[cut] = 0;
        if (!createOne(path.c_str())) {
            return false;
        }
        path[cut] = Char(PathSeparator);
        last = cut;
    }
    return last + 1 == path.size() || createOne(path.c_str());
} catch (const std::exception&) { // no memory for the copy
    return false;
}

} // namespace Platform

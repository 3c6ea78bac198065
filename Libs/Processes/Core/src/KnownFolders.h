#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>

// The names that a watcher has accepted in its folder. Looking one up costs the same however many there are,
// and allocates nothing. Names compare byte by byte. Belongs to the scanning thread.
class KnownFolders {
public:
    bool Contains(std::string_view name) const { return m_names.find(name) != m_names.end(); }
    void Add(std::string_view name) { m_names.emplace(name); }
    std::size_t Size() const { return m_names.size(); }

private:
    struct Hash : std::hash<std::string_view> {
        using is_transparent = void; // look-ups by view make no string
    };
    std::unordered_set<std::string, Hash, std::equal_to<>> m_names;
};

#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

namespace TestSupport {

// A new folder below the working directory, deleted at the end with all it holds. Names and paths are UTF-8.
class ScratchFolder {
public:
    explicit ScratchFolder(std::string_view stem = "scratch") {
        for (int number = 0; m_folder.empty(); ++number) {
            const std::string name = std::string(stem) + "-" + std::to_string(number);
            std::filesystem::path folder = std::filesystem::current_path() / FromUtf8(name);
            if (std::filesystem::create_directory(folder)) {
                m_folder = std::move(folder);
            }
        }
    }
    ~ScratchFolder() {
        std::error_code ignored; // what can't be deleted can be seen in the working directory
        for (const auto& entry : std::filesystem::recursive_directory_iterator(m_folder, ignored)) {
            if (entry.is_regular_file(ignored)) {
                std::filesystem::permissions(entry.path(), std::filesystem::perms::owner_write,
                                             std::filesystem::perm_options::add, ignored);
            }
        }
        std::filesystem::remove_all(m_folder, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete; // it owns the folder
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& Folder() const { return m_folder; }

    // With a trailing separator.
    std::string Path() const { return ToUtf8(m_folder) + Separator; }

    // Without a trailing separator.
    std::string PathOf(std::string_view name) const {
        return ToUtf8((m_folder / FromUtf8(name)).make_preferred());
    }

    // Makes a folder and those above it; returns its path without a trailing separator.
    std::string MakeFolder(std::string_view name) const {
        std::filesystem::create_directories(m_folder / FromUtf8(name));
        return PathOf(name);
    }

    // Writes a file, making its folders as needed; returns its path.
    std::string MakeFile(std::string_view name, std::string_view content) const {
        const std::filesystem::path path = m_folder / FromUtf8(name);
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << content;
        return PathOf(name);
    }

    // Empty if there is no such file.
    std::string ReadFile(std::string_view name) const {
        std::ifstream file(m_folder / FromUtf8(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    bool Exists(std::string_view name) const { return std::filesystem::exists(m_folder / FromUtf8(name)); }

    static std::filesystem::path FromUtf8(std::string_view text) {
        return {std::u8string(text.begin(), text.end())};
    }
    static std::string ToUtf8(const std::filesystem::path& path) {
        const std::u8string text = path.u8string();
        return {text.begin(), text.end()};
    }

private:
    static constexpr char Separator = static_cast<char>(std::filesystem::path::preferred_separator);

    std::filesystem::path m_folder;
};

} // namespace TestSupport

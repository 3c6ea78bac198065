#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

namespace TestSupport {

// A fresh folder under the working directory, removed with all it holds, read-only files too. A stem with
// letters outside ASCII makes every path in it such a one.
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
        std::error_code ignored; // what can't be removed shows up in the working directory
        MakeWritable(m_folder);
        std::filesystem::remove_all(m_folder, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete; // it owns the folder
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& Folder() const { return m_folder; }

    // With forward slashes, which every wide call takes.
    std::wstring Wide() const { return m_folder.generic_wstring(); }

    // UTF-8, with a trailing separator.
    std::string Path() const { return ToUtf8(m_folder) + Separator; }

    // UTF-8, without a trailing separator.
    std::string PathOf(std::string_view name) const {
        return ToUtf8((m_folder / FromUtf8(name)).make_preferred());
    }

    // Creates a folder with its parents in between; returns its path without a trailing separator.
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

    // Everything in the file; empty when there is none.
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

    static void MakeWritable(const std::filesystem::path& folder) {
        std::error_code ignored;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, ignored)) {
            if (entry.is_regular_file(ignored)) {
                std::filesystem::permissions(entry.path(), std::filesystem::perms::owner_write,
                                             std::filesystem::perm_options::add, ignored);
            }
        }
    }

    std::filesystem::path m_folder;
};

} // namespace TestSupport

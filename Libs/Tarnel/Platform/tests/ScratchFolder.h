#pragma once

#include <filesystem>
#include <string>

// An empty folder under the working folder for one test. What an earlier run left there is removed first;
// what is still open at the end stays until then.
class ScratchFolder {
public:
    explicit ScratchFolder(const std::string& name)
        : m_path(std::filesystem::current_path() / "scratch" / name) {
        std::filesystem::remove_all(m_path);
        std::filesystem::create_directories(m_path);
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete; // owns the folder
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& Path() const { return m_path; }

    // UTF-8 and with forward slashes, which every call takes.
    std::string Utf8(const std::string& file = "") const {
        const std::u8string text = m_path.generic_u8string();
        return std::string(text.begin(), text.end()) + (file.empty() ? "" : "/" + file);
    }
    std::wstring Wide() const { return m_path.generic_wstring(); }

private:
    std::filesystem::path m_path;
};

#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <span>
#include <string>
#include <vector>

// A folder that files are unpacked into and nothing outside of it. Names are judged as hostile; links in the
// folder are not followed; what is there already stays unless it may be replaced. One thread.
class UnpackFolder {
public:
    UnpackFolder(std::string folder, bool mayReplace)
        : m_folder(std::move(folder)), m_mayReplace(mayReplace) {}

    static constexpr char NotWhole[] = "It can't be unpacked whole"; // the fill function gave up

    // Gets the file's bytes with the writer's function, piece by piece; false from either ends it.
    using Piece = std::span<const uint8_t>;
    using Fill = std::function<bool(const std::function<bool(Piece)>& write)>;

    // Makes the file with all its folders, and has it filled. A name that was given before, in any case of
    // ASCII letters, gets a number: game.log, then game~2.log. Empty when the file is there whole, else why
    // it is not; then nothing of it stays.
    std::string Write(const std::string& name, const Fill& fill, std::string& path);

private:
    std::string FreeName(const std::string& name);
    std::string MakeWay(const std::string& name);
    bool IsOurs(const std::string& target);

    std::string m_folder;
    bool m_mayReplace;
    std::map<std::string, unsigned> m_given; // in lower case, with "/"; with the next number to try
    std::vector<std::string> m_written;      // not in m_identities yet
    std::set<std::string> m_identities;      // of what was written
};

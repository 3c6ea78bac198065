#pragma once

#include <cstdint>
#include <string>
#include <vector>

// What the command line asks for.
struct Arguments {
    std::string command;            // empty if only help or version is wanted
    std::vector<std::string> files; // "-" is standard input
    bool help = false;
    bool version = false;
    bool json = false;
    bool ndjson = false;
    bool force = false;
    bool stored = false;
    bool connect = false;
    std::string to;
    std::string config;
    std::string packager;
    uint64_t limit = uint64_t{4} << 30; // bytes of unpacked content for each package
};

// False, with a sentence in error, if the arguments (without the program's own name) make no sense. Options
// may be before or after the command, with their values as "--to X" or "--to=X"; after "--" there are only
// files.
bool ParseArguments(const std::vector<std::string>& words, Arguments& arguments, std::string& error);

// 300, 64K, 10M, 4G: bytes, in steps of 1024.
bool ParseSize(const std::string& text, uint64_t& size);

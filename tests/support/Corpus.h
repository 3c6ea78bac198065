#pragma once

#include <fstream>
#include <iterator>
#include <string>

// A committed input of the fuzz targets, such as "Json/full"; tests run in a folder like build/native.
inline std::string ReadCorpus(const std::string& name) {
    std::ifstream file("../../tests/fuzz/corpus/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

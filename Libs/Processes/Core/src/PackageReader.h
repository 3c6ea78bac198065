#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "Libs/Processes/Core/src/BugHeader.h"

// One fault of a package and where it is, in bytes from the package's start.
struct PackageProblem {
    uint64_t offset = 0;
    std::string text;
};

// One file as a package stores it.
struct PackageEntry {
    std::string name;    // from the header's catalog; empty if that has no such entry
    uint64_t offset = 0; // of the entry, which begins with its length
    std::string digest;  // as recorded in the entry
    std::span<const uint8_t> data;
};

// Takes a package apart and trusts nothing in it (layout in docs/formats.md). Any bytes are safe to read; of
// a damaged package it gives what it could understand, and the problems. Points into the bytes, which must
// outlive it. One thread. May throw std::bad_alloc.
class PackageReader {
public:
    explicit PackageReader(std::span<const uint8_t> package);

    // Called with the number of bytes read since the last call.
    using Progress = std::function<void(uint64_t bytes)>;

    // Computes the digests of the body and of the entries, and adds a problem for each that differs from the
    // recorded one. Reads the package twice.
    void CheckDigests(const Progress& progress);

    // Partly filled if the header could not be read whole.
    const BugHeader& GetHeader() const { return m_header; }
    std::span<const uint8_t> GetHeaderBytes() const { return m_headerBytes; }

    // In the order of the package.
    const std::vector<PackageEntry>& GetEntries() const { return m_entries; }

    // In the order in which they were found; empty if none was found so far.
    const std::vector<PackageProblem>& GetProblems() const { return m_problems; }

private:
    bool ReadPrefix();
    bool ReadHeader();
    void ReadEntries();
    bool ReadEntry(std::size_t offset);
    void NameEntries();
    bool ReadLength(std::size_t offset, const char* what, std::size_t& length);
    std::string ReadDigest(std::size_t offset, const char* what);
    void Report(std::size_t offset, std::string text);

    std::span<const uint8_t> m_package;
    std::size_t m_end = 0; // of the body
    std::string m_bodyDigest;
    std::size_t m_headerSize = 0;
    std::span<const uint8_t> m_headerBytes;
    BugHeader m_header;
    std::vector<PackageEntry> m_entries;
    std::vector<PackageProblem> m_problems;
};

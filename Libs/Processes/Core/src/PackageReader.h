#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "Libs/Processes/Core/src/BugHeader.h"
#include "Libs/Processes/Core/src/PackageFormat.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ByteSource.h"

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
    uint64_t size = 0;   // of the data

    uint64_t DataOffset() const { return offset + PackageFormat::EntryPrefixSize; }
};

// Takes a package apart and trusts nothing in it (layout in docs/formats.md). Any bytes are safe to read; of
// a damaged package it gives what it could understand, and the problems. The package outlives it; if that
// can't be read, what this says of it means nothing. One thread. May throw std::bad_alloc.
class PackageReader {
public:
    explicit PackageReader(Platform::ByteSource& package);

    // Called with the number of bytes read since the last call.
    using Progress = std::function<void(uint64_t bytes)>;

    // Computes the digests of the body and of the entries, and adds a problem for each that differs from the
    // recorded one. Reads the package once.
    void CheckDigests(const Progress& progress);

    // Partly filled if the header could not be read whole.
    const BugHeader& GetHeader() const { return m_header; }

    // Of the header's bytes, which follow the prefix; 0 if they are not all there.
    uint64_t GetHeaderSize() const { return m_headerSize; }

    // In the order of the package.
    const std::vector<PackageEntry>& GetEntries() const { return m_entries; }

    // In the order in which they were found; empty if none was found so far.
    const std::vector<PackageProblem>& GetProblems() const { return m_problems; }

private:
    bool ReadPrefix();
    bool ReadHeader();
    void ReadEntries();
    bool ReadEntry(uint64_t offset);
    void NameEntries();
    bool ReadLength(uint64_t offset, const char* what, uint64_t& length);
    std::string ReadText(uint64_t offset, uint64_t size);
    std::string ReadDigest(uint64_t offset, const char* what);
    void Compare(const Crypto::MD5& md5, const std::string& recorded, uint64_t offset,
                 const std::string& what);
    void Report(uint64_t offset, std::string text);

    Platform::ByteSource& m_package;
    uint64_t m_end = 0; // of the body
    std::string m_bodyDigest;
    uint64_t m_headerSize = 0;
    BugHeader m_header;
    std::vector<PackageEntry> m_entries;
    std::vector<PackageProblem> m_problems;
};

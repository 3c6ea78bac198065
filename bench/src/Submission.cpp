#include "bench/src/Submission.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <span>

#include "Libs/Processes/Core/src/BugHeader.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_FileBytes.h"
#include "bench/src/Bench.h"

namespace Bench {

namespace {

constexpr std::size_t PageSize = 4096;

// A small generator of our own: those of the standard library may draw differently from one to the next.
class Random {
public:
    explicit Random(uint64_t seed) : m_state(seed) {}

    uint64_t Next() {
        uint64_t value = m_state += 0x9e3779b97f4a7c15;
        value = (value ^ (value >> 30)) * 0xbf58476d1ce4e5b9;
        value = (value ^ (value >> 27)) * 0x94d049bb133111eb;
        return value ^ (value >> 31);
    }
    uint64_t Below(uint64_t limit) { return Next() % limit; }

private:
    uint64_t m_state;
};

void Put(std::span<uint8_t> page, std::size_t offset, uint64_t value) {
    std::memcpy(page.data() + offset, &value, std::min(sizeof value, page.size() - offset));
}

// Objects of 64 bytes: a table pointer of few kinds, two pointers into one heap, small numbers, a float.
void FillWithRecords(std::span<uint8_t> page, Random& random) {
    for (std::size_t offset = 0; offset + 64 <= page.size(); offset += 64) {
        Put(page, offset, 0x00007ff6a0120000 + random.Below(24) * 0x58);
        Put(page, offset + 8, 0x000001e4c0000000 + random.Below(1 << 20) * 16);
        Put(page, offset + 16, 0x000001e4c0000000 + random.Below(1 << 12) * 16);
        Put(page, offset + 24, random.Below(200));
        Put(page, offset + 32, 0x3f800000 + random.Below(1 << 16) * 64);
        Put(page, offset + 48, random.Below(4));
    }
}

// Short instructions of few kinds, every fourth with an operand.
void FillWithCode(std::span<uint8_t> page, Random& random) {
    static constexpr uint32_t Instructions[] = {0x24448b48, 0x8948c88b, 0x0fc08548, 0x20c48348,
                                                0xe8cf8b48, 0xc3c0ff41, 0x4c8d4c08, 0x90cccccc};
    for (std::size_t offset = 0; offset + 4 <= page.size(); offset += 4) {
        const uint64_t draw = random.Next();
        const uint32_t word = draw % 4 == 0 ? static_cast<uint32_t>((draw >> 40) & 0xffff)
                                            : Instructions[(draw >> 8) % std::size(Instructions)];
        std::memcpy(page.data() + offset, &word, sizeof word);
    }
}

std::vector<uint8_t> MakeDump(std::size_t size, uint64_t seed) {
    Random random(seed);
    std::vector<uint8_t> bytes(size);
    for (std::size_t offset = 0; offset < size; offset += PageSize) {
        const auto page = std::span(bytes).subspan(offset, std::min(PageSize, size - offset));
        const uint64_t kind = random.Below(10);
        if (kind < 5) {
            FillWithRecords(page, random);
        } else if (kind < 8) {
            FillWithCode(page, random);
        } // the rest stays zero
    }
    return bytes;
}

std::vector<uint8_t> MakeLog(std::size_t size, uint64_t seed) {
    static constexpr const char* Events[] = {"Streaming: loaded tile", "Render: frame with draw calls",
                                             "Net: packet of peer", "Audio: voice started on bus",
                                             "Physics: bodies and contacts"};
    Random random(seed);
    std::vector<uint8_t> bytes;
    bytes.reserve(size + 256);
    for (unsigned milliseconds = 0; bytes.size() < size;
         milliseconds += static_cast<unsigned>(random.Below(20))) {
        char line[160];
        const char* event = Events[random.Below(std::size(Events))];
        const auto number = [&](uint64_t limit) { return static_cast<unsigned>(random.Below(limit)); };
        const int length =
            std::snprintf(line, sizeof line, "[2024-05-01 %02u:%02u:%02u.%03u] %s %u, %u in %u us\n",
                          milliseconds / 3600000 % 24, milliseconds / 60000 % 60, milliseconds / 1000 % 60,
                          milliseconds % 1000, event, number(4096), number(64), number(100000));
        bytes.insert(bytes.end(), line, line + length);
    }
    bytes.resize(size);
    return bytes;
}

std::vector<uint8_t> MakePicture(std::size_t size, uint64_t seed) {
    Random random(seed);
    std::vector<uint8_t> bytes(size);
    for (std::size_t offset = 0; offset < size; offset += sizeof(uint64_t)) {
        Put(bytes, offset, random.Next());
    }
    return bytes;
}

} // namespace

std::vector<SubmissionFile> MakeSubmission(std::size_t total) {
    const std::size_t dump = total / 8 * 5;
    const std::size_t log = total / 4;
    std::vector<SubmissionFile> files;
    files.push_back({"crash_Minidump.dmp", MakeDump(dump, 1)});
    files.push_back({"game.log", MakeLog(log, 2)});
    files.push_back({"screenshot.png", MakePicture(total - dump - log, 3)});
    return files;
}

void WriteSubmission(const std::string& folder, const std::vector<SubmissionFile>& files) {
    for (const SubmissionFile& file : files) {
        if (Platform::WriteWholeFile(folder + "/" + file.name, file.bytes) != Platform::WriteOutcome::Done) {
            Fail("can't write " + file.name + " into " + folder);
        }
    }
    BugHeader header;
    header.catalog.dump.file = files[0].name;
    header.catalog.log.file = files[1].name;
    header.catalog.attachments.push_back({files[2].name, ""});
    if (const ResultCode result = HeaderFile::Write(folder, header); !result) {
        Fail(result.Text());
    }
}

} // namespace Bench

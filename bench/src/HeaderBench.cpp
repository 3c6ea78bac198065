// Reading a header of 5,000 frames and 500 modules, against the JSON library's bare parse of the same text.
#include <functional>
#include <string>

#include "Libs/Processes/Core/src/BugHeader.h"
#include "Libs/Processes/Core/src/SubmissionFolder.h"
#include "bench/src/Bench.h"
#include "bench/src/HeaderText.h"

namespace {

#if defined(_WIN32)
const std::string Where = ", Wine";
#else
const std::string Where = ", native";
#endif

constexpr int Repetitions = 10; // a single one is as short as the clock is fine

void Require(const ResultCode& result, const BugHeader& header) {
    if (!result || header.moduleInfo.size() != Bench::HeaderModules) {
        Bench::Fail("the header was not read");
    }
}

void Repeat(const std::function<void()>& work) {
    for (int i = 0; i < Repetitions; ++i) {
        work();
    }
}

double Milliseconds(double seconds) {
    return seconds / Repetitions * 1000;
}

} // namespace

int main(int argc, char** argv) {
    const Bench::Options options = Bench::ReadOptions(argc, argv);
    const int rounds = options.quick ? 5 : 100;
    const std::string text = Bench::MakeHeaderText();
    const auto bare = [&] {
        if (!Bench::ParseBare(text)) {
            Bench::Fail("the text is not JSON");
        }
    };
    const auto parse = [&] {
        BugHeader header;
        Require(HeaderFile::Parse(text, header), header);
    };
    BugHeader whole;
    Require(HeaderFile::Parse(text, whole), whole);
    if (!HeaderFile::Write(options.scratch, whole)) {
        Bench::Fail("no header could be written to " + options.scratch);
    }
    const auto read = [&] {
        BugHeader header;
        Require(SubmissionFolder(options.scratch).ReadHeader(header), header);
    };

    const Bench::Best parsing = Bench::Interleave(
        rounds, Bench::WallSeconds, [&] { Repeat(parse); }, [&] { Repeat(bare); });
    const Bench::Best reading = Bench::Interleave(
        rounds, Bench::WallSeconds, [&] { Repeat(read); }, [&] { Repeat(bare); });
    Bench::Report("reading a header" + Where, "ms", Milliseconds(parsing.subject),
                  Milliseconds(parsing.bound), Bench::Goal::AtMost, 1.5);
    Bench::Note("with its file " + std::to_string(Milliseconds(reading.subject)) + " ms");
    return 0;
}

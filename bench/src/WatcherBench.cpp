// Passes of a watcher over folders that it knows, against the bare enumeration of the same folder.
#include <windows.h>

#include <string>

#include "Libs/Processes/Core/src/FolderScan.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Path.h"
#include "bench/src/Bench.h"

namespace {

// As bench.sh names the folders that it makes: this program would take minutes for it, since Wine reads a
// folder whole before it makes another one in it.
std::string NameOf(int number) {
    const std::string digits = std::to_string(1'000'000 + number);
    return "2024-05-06_07-08-09_crash-" + digits.substr(1);
}

// A folder of folders that a watcher has met before, all of them: folders-COUNT in the scratch folder.
class KnownArea {
public:
    KnownArea(const std::string& scratch, int count) : m_count(static_cast<std::size_t>(count)) {
        m_config.folder = scratch + "\\folders-" + std::to_string(count) + "\\";
        m_search = Platform::SystemPath(m_config.folder).Below(L"*");
        for (int i = 0; i < count; ++i) {
            m_known.insert(NameOf(i));
        }
    }

    void Pass() const {
        FolderScan scan(m_config, m_known);
        if (!scan.Run() || !scan.GetNewNames().empty()) {
            Bench::Fail("the pass did not find what it knows");
        }
    }

    void Enumerate() const {
        std::size_t found = 0;
        WIN32_FIND_DATAW entry;
        HANDLE search = FindFirstFileExW(m_search.Get(), FindExInfoBasic, &entry, FindExSearchNameMatch,
                                         nullptr, FIND_FIRST_EX_LARGE_FETCH);
        for (BOOL more = search != INVALID_HANDLE_VALUE; more; more = FindNextFileW(search, &entry)) {
            ++found;
        }
        FindClose(search);
        if (found != m_count + 2) { // "." and ".."
            Bench::Fail("the enumeration did not find the folders");
        }
    }

    double PerFolder(double seconds) const { return seconds * 1e6 / static_cast<double>(m_count); }

private:
    WatcherConfig m_config;
    KnownFolders m_known;
    Platform::SystemPath m_search;
    std::size_t m_count;
};

} // namespace

int main(int argc, char** argv) {
    const Bench::Options options = Bench::ReadOptions(argc, argv);
    const KnownArea few(options.scratch, options.quick ? 1000 : 10'000);
    const KnownArea many(options.scratch, options.quick ? 10'000 : 100'000);
    const int rounds = options.quick ? 3 : 10;

    const Bench::Best pass = Bench::Interleave(
        rounds * 2, Bench::WallSeconds, [&] { few.Pass(); }, [&] { few.Enumerate(); });
    Bench::Report("watcher pass over 10,000 known folders", "us/folder", few.PerFolder(pass.subject),
                  few.PerFolder(pass.bound), Bench::Goal::AtMost, 1.2);

    // As much work for the one as for the other.
    const Bench::Best growth = Bench::Interleave(
        rounds, Bench::WallSeconds, [&] { many.Pass(); },
        [&] {
            for (int i = 0; i < 10; ++i) {
                few.Pass();
            }
        });
    Bench::Report("a folder's share of a pass at 100,000 against 10,000", "us/folder",
                  many.PerFolder(growth.subject), many.PerFolder(growth.bound), Bench::Goal::AtMost, 1.15);
    return 0;
}

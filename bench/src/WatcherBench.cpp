// WatcherBench FOLDER FEW MANY ROUNDS: passes of a watcher over sub-folders that it knows. FOLDER has a
// folder "FEW" and a folder "MANY" with that many sub-folders. First against the bare enumeration of the few;
// then a pass over the many against as many folders of passes over the few. Wall-clock time.
#include <windows.h>

#include <chrono>
#include <string>

#include "Libs/Processes/Core/src/FolderScan.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Path.h"
#include "bench/src/Bench.h"

namespace {

class KnownArea {
public:
    KnownArea(const std::string& folder, const std::string& count) : m_count(std::stoul(count)) {
        m_config.folder = folder + "\\" + count + "\\";
        m_search = Platform::SystemPath(m_config.folder).Below(L"*");
        Enumerate([this](const std::wstring& name) { m_known.emplace(name.begin(), name.end()); });
        if (m_known.size() != m_count + 2) { // "." and ".."
            Bench::Fail("the folders are not there");
        }
    }

    void Pass() const {
        FolderScan scan(m_config, m_known);
        if (!scan.Run() || !scan.GetNewNames().empty()) {
            Bench::Fail("the pass did not find what it knows");
        }
    }

    template <class Visitor>
    void Enumerate(Visitor visit) const {
        WIN32_FIND_DATAW entry;
        HANDLE search = FindFirstFileExW(m_search.Get(), FindExInfoBasic, &entry, FindExSearchNameMatch,
                                         nullptr, FIND_FIRST_EX_LARGE_FETCH);
        for (BOOL more = search != INVALID_HANDLE_VALUE; more; more = FindNextFileW(search, &entry)) {
            visit(entry.cFileName);
        }
        FindClose(search);
    }

    std::size_t Count() const { return m_count; }

private:
    WatcherConfig m_config;
    KnownFolders m_known;
    Platform::SystemPath m_search;
    std::size_t m_count;
};

double WallSeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

} // namespace

int main(int, char** argv) {
    const KnownArea few(argv[1], argv[2]);
    const KnownArea many(argv[1], argv[3]);
    const int rounds = std::atoi(argv[4]);
    Bench::Compare(
        rounds * 2, &WallSeconds, [&] { few.Pass(); }, [&] { few.Enumerate([](const wchar_t*) {}); });
    Bench::Compare(
        rounds, &WallSeconds, [&] { many.Pass(); },
        [&] {
            for (std::size_t i = 0; i < many.Count() / few.Count(); ++i) {
                few.Pass();
            }
        });
    return 0;
}

#include "Tools/PackageTool/src/Progress.h"

#include <algorithm>

#include "Tools/PackageTool/src/Console.h"

namespace {

constexpr auto FirstAfter = std::chrono::milliseconds(500);
constexpr auto Pause = std::chrono::milliseconds(100);
constexpr char WipeLine[] = "\r\x1B[K";

} // namespace

Progress::Progress(const std::string& what, uint64_t total)
    : m_what(Console::Printable(what)), m_total(total), m_isWanted(Console::IsErrorTerminal()),
      m_next(Clock::now() + FirstAfter) {}

Progress::~Progress() {
    if (m_isShown) {
        Console::PrintProgress(WipeLine);
    }
}

void Progress::Advance(uint64_t bytes) {
    m_done += bytes;
    if (m_isWanted && Clock::now() >= m_next) {
        Console::PrintProgress(WipeLine + Bar(m_what, m_done, m_total));
        m_isShown = true;
        m_next = Clock::now() + Pause;
    }
}

std::string Progress::Bar(const std::string& what, uint64_t done, uint64_t total) {
    constexpr unsigned Width = 30;
    const std::string mebibytes = std::to_string(done >> 20) + " MiB";
    if (total == 0) {
        return what + " " + mebibytes;
    }
    const double part = std::min(1.0, static_cast<double>(done) / static_cast<double>(total));
    std::string bar(static_cast<std::size_t>(part * Width), '#');
    bar.resize(Width, '.');
    return what + " [" + bar + "] " + std::to_string(static_cast<int>(part * 100)) + " %";
}

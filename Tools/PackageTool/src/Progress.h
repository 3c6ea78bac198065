#pragma once

#include <chrono>
#include <cstdint>
#include <string>

// A bar on standard error for work that takes long: shown from half a second on, when that is a terminal, and
// wiped at the end. One thread.
class Progress {
public:
    // total in bytes; 0 when it is not known, then only what is done is shown.
    Progress(const std::string& what, uint64_t total);
    ~Progress();
    Progress(const Progress&) = delete; // one bar on one line
    Progress& operator=(const Progress&) = delete;

    void Advance(uint64_t bytes);

    // The bar as text of one line.
    static std::string Bar(const std::string& what, uint64_t done, uint64_t total);

private:
    using Clock = std::chrono::steady_clock;

    std::string m_what;
    uint64_t m_total;
    uint64_t m_done = 0;
    bool m_isWanted;
    bool m_isShown = false;
    Clock::time_point m_next;
};

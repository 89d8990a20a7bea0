#ifndef TOVO_CALC_PROGRESSBAR_H
#define TOVO_CALC_PROGRESSBAR_H

#include <chrono>
#include <cstddef>

// A line on the error output that shows how far long work has come; nothing unless that is a
// terminal, and nothing for work that ends soon. Wiped out at the end.
class ProgressBar {
public:
    ProgressBar();
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    // Requires: done is not above total, unless the latter is 0, which is an unknown total.
    void Show(std::size_t done, std::size_t total);

private:
    using Clock = std::chrono::steady_clock;

    bool m_IsTerminal;
    bool m_IsShown = false;
    Clock::time_point m_Next; // when it is shown again
};

#endif

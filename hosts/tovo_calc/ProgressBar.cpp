#include "ProgressBar.h"

#include <cstdio>
#include <string>

#include <fmt/core.h>
#include <unistd.h>

namespace {

constexpr std::chrono::milliseconds kPatience{500};
constexpr std::chrono::milliseconds kPause{100};
constexpr std::size_t kWidth = 40;
constexpr const char* kWipe = "\r\x1b[K"; // to the start of the line, which is emptied

} // namespace

ProgressBar::ProgressBar()
    : m_IsTerminal(isatty(STDERR_FILENO) != 0), m_Next(Clock::now() + kPatience)
{}

ProgressBar::~ProgressBar()
{
    if (m_IsShown)
        std::fputs(kWipe, stderr);
}

void ProgressBar::Show(std::size_t done, std::size_t total)
{
    if (!m_IsTerminal || total == 0 || Clock::now() < m_Next)
        return;
    const double share = static_cast<double>(done) / static_cast<double>(total);
    const auto filled = static_cast<std::size_t>(share * kWidth);
    fmt::print(stderr, "{}[{}{}] {:3.0f} %", kWipe, std::string(filled, '='),
               std::string(kWidth - filled, ' '), share * 100);
    std::fflush(stderr);
    m_IsShown = true;
    m_Next = Clock::now() + kPause;
}

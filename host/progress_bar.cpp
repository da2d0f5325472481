#include "progress_bar.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace {
constexpr std::chrono::milliseconds kBeforeFirstDraw{500};
constexpr std::chrono::milliseconds kBetweenDraws{100};
constexpr int kWidth = 32;
}  // namespace

ProgressBar::ProgressBar(std::string label)
    : mLabel(std::move(label)),
      mTerminal(isatty(STDERR_FILENO) == 1),
      mNextDraw(Clock::now() + kBeforeFirstDraw) {}

ProgressBar::~ProgressBar() {
    if (mDrawn) std::fputs("\r\033[K", stderr);
}

void ProgressBar::Report(long done, long total) {
    if (!mTerminal || Clock::now() < mNextDraw) return;
    mNextDraw = Clock::now() + kBetweenDraws;
    mDrawn = true;
    if (total <= 0) {
        std::fprintf(stderr, "\r\033[K%s %ld", mLabel.c_str(), done);
        return;
    }
    long const part = std::clamp(done, 0L, total);
    int const filled = static_cast<int>(part * kWidth / total);
    std::string const bar = std::string(filled, '#') + std::string(kWidth - filled, '.');
    std::fprintf(stderr, "\r\033[K%s [%s] %ld%%", mLabel.c_str(), bar.c_str(), part * 100 / total);
}

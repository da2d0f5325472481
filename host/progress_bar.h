// A progress bar on standard error, drawn only when that is a terminal.
#pragma once

#include <framewright/framewright.h>

#include <chrono>
#include <string>

/// Appears once the work has lasted half a second and vanishes with the object.
class ProgressBar : public ScProgressIndicator {
  public:
    explicit ProgressBar(std::string label);
    ~ProgressBar() override;
    ProgressBar(ProgressBar const&) = delete;
    ProgressBar& operator=(ProgressBar const&) = delete;

    /// `total` 0 shows only what is done.
    void Report(long done, long total) override;

  private:
    using Clock = std::chrono::steady_clock;

    std::string mLabel;
    bool mTerminal;
    bool mDrawn = false;
    Clock::time_point mNextDraw;
};

// The line on standard error that shows how far the work is.
#ifndef ZLV_TOOLS_PROGRESS_BAR_H
#define ZLV_TOOLS_PROGRESS_BAR_H

#include <chrono>
#include <cstddef>
#include <mutex>
#include <string>

namespace zlv {

enum class ShowProgress { OnTerminal, Always, Never };

// Any thread may report. Messages printed through it do not run into the bar.
class ProgressBar {
public:
    // `parts` pieces of work of equal weight make the whole.
    ProgressBar(ShowProgress show, size_t parts);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    // So much more is done, in parts.
    void Advance(double parts, const std::string& label);

    // A line of its own on standard error.
    void Say(const std::string& message);

private:
    void Draw(const std::string& label);
    void Wipe();

    std::mutex mutex_;
    const bool isVisible_;
    const double whole_;
    double done_ = 0;
    size_t drawnWidth_ = 0;
    std::chrono::steady_clock::time_point nextDraw_;
};

// One part's progress: turns fractions from the start of the part into steps. The library may begin anew with each
// stage of an effect; the bar never goes back.
class PartProgress {
public:
    PartProgress(ProgressBar& bar, std::string label) : bar_(bar), label_(std::move(label)) {}

    void Reach(double fraction)
    {
        if (fraction <= reached_) return;
        bar_.Advance(fraction - reached_, label_);
        reached_ = fraction;
    }

private:
    ProgressBar& bar_;
    const std::string label_;
    double reached_ = 0;
};

}  // namespace zlv

#endif

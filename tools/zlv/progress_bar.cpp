// The line on standard error that shows how far the work is.
#include "progress_bar.h"

#include "system.h"

#include <algorithm>
#include <cmath>
#include <iostream>

namespace zlv {
namespace {

constexpr size_t kBarWidth = 30, kMostLabel = 36;
constexpr double kAlmostAll = 1 - 1e-6;  // what sums of small parts lack is rounding
constexpr std::chrono::milliseconds kRedraw(80);

bool IsShown(ShowProgress show)
{
    return show == ShowProgress::Always || (show == ShowProgress::OnTerminal && IsErrorOutputTerminal());
}

// The end of a long label, which tells more than its beginning. A letter of several bytes is not cut.
std::string Shortened(const std::string& label)
{
    if (label.size() <= kMostLabel) return label;
    size_t start = label.size() - kMostLabel + 3;
    while (start < label.size() && (static_cast<unsigned char>(label[start]) & 0xC0u) == 0x80u) ++start;
    return "..." + label.substr(start);
}

}  // namespace

ProgressBar::ProgressBar(ShowProgress show, size_t parts)
    : isVisible_(IsShown(show)), whole_(static_cast<double>(std::max<size_t>(parts, 1)))
{
}

ProgressBar::~ProgressBar()
{
    const std::lock_guard lock(mutex_);
    Wipe();
}

void ProgressBar::Advance(double parts, const std::string& label)
{
    if (!isVisible_) return;
    const std::lock_guard lock(mutex_);
    done_ += parts;
    if (done_ > whole_ * kAlmostAll) done_ = whole_;
    const auto now = std::chrono::steady_clock::now();
    if (now < nextDraw_ && done_ < whole_) return;
    nextDraw_ = now + kRedraw;
    Draw(label);
}

void ProgressBar::Say(const std::string& message)
{
    const std::lock_guard lock(mutex_);
    Wipe();
    std::cerr << message << std::endl;
}

void ProgressBar::Draw(const std::string& label)
{
    const double fraction = done_ / whole_;
    const size_t filled = static_cast<size_t>(fraction * kBarWidth + 1e-9);
    const std::string percent = std::to_string(static_cast<int>(fraction * 100 + 1e-9));
    std::string line = "[" + std::string(filled, '#') + std::string(kBarWidth - filled, '.') + "] ";
    line += std::string(3 - std::min<size_t>(percent.size(), 3), ' ') + percent + "%  " + Shortened(label);
    const size_t width = line.size();
    if (width < drawnWidth_) line.append(drawnWidth_ - width, ' ');
    drawnWidth_ = width;
    std::cerr << '\r' << line << std::flush;
}

void ProgressBar::Wipe()
{
    if (drawnWidth_ == 0) return;
    std::cerr << '\r' << std::string(drawnWidth_, ' ') << '\r' << std::flush;
    drawnWidth_ = 0;
}

}  // namespace zlv

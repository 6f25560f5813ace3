#include "progress_line.hpp"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <mutex>
#include <string>

#include "commands/progress.hpp"

namespace zentable::cli {

namespace {

using Clock = std::chrono::steady_clock;
using progress::Unit;

// Work shorter than this shows no line at all. ZENTABLE_PROGRESS_AFTER (in
// seconds) moves it, so that a test can watch the line on short work.
Clock::duration quiet_start() {
    const char* text = std::getenv("ZENTABLE_PROGRESS_AFTER");
    char* end = nullptr;
    const double seconds = text ? std::strtod(text, &end) : 2.0;
    return std::chrono::duration_cast<Clock::duration>(
        std::chrono::duration<double>(text && end != text && seconds >= 0 ? seconds : 2.0));
}
constexpr auto kBetweenUpdates = std::chrono::milliseconds(100);

struct LineState {
    std::mutex mutex;
    std::ostream* err = nullptr;
    Clock::time_point started, last_shown;
    Clock::duration quiet{};
    bool shown = false;
    double bytes = 0;  // summed over the blocks of every reader of the call
};
LineState state;

std::string megabytes(double bytes) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f MB", bytes / 1e6);
    return text;
}

std::string line_text(Unit unit, double done, double total) {
    const auto count = [](double v) { return std::to_string(static_cast<long long>(v)); };
    switch (unit) {
        case Unit::bytes:
            return "reading: " + megabytes(done) + (total > 0 ? " of " + megabytes(total) : "");
        case Unit::iterations:
            return "iteration " + count(done) + (total > 0 ? " of at most " + count(total) : "");
        case Unit::trees:
            return "tree " + count(done) + (total > 0 ? " of " + count(total) : "");
        case Unit::epochs:
            return "epoch " + count(done) + (total > 0 ? " of " + count(total) : "");
    }
    return "";
}

void listen(Unit unit, double done, double total) {
    // A reader that cannot take the lock skips its update: another is drawing.
    std::unique_lock<std::mutex> lock(state.mutex, std::try_to_lock);
    if (!lock.owns_lock() || !state.err)
        return;
    if (unit == Unit::bytes) {
        state.bytes += done;
        done = total > 0 && state.bytes > total ? total : state.bytes;
    }
    const Clock::time_point now = Clock::now();
    if (now - state.started < state.quiet || now - state.last_shown < kBetweenUpdates)
        return;
    state.last_shown = now;
    state.shown = true;
    // \r back to the start, the text, then erase what a longer line left.
    *state.err << '\r' << line_text(unit, done, total) << "\x1b[K" << std::flush;
}

}  // namespace

ProgressLine::ProgressLine(bool wanted) {
    if (!wanted || !::isatty(STDERR_FILENO))
        return;
    std::lock_guard<std::mutex> lock(state.mutex);
    state.err = &std::cerr;
    state.started = Clock::now();
    state.quiet = quiet_start();
    state.last_shown = {};
    state.shown = false;
    state.bytes = 0;
    active_ = true;
    progress::set_listener(&listen);
}

ProgressLine::~ProgressLine() {
    if (!active_)
        return;
    progress::set_listener(nullptr);
    std::lock_guard<std::mutex> lock(state.mutex);
    if (state.shown)
        *state.err << "\r\x1b[K" << std::flush;
    state.err = nullptr;
}

}  // namespace zentable::cli

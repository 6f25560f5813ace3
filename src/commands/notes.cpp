#include "commands/notes.hpp"

#include <utility>

namespace zentable {

namespace {

// Per thread, so that two calls on two threads never write into each other's sink.
NoteSink& current_sink() {
    thread_local NoteSink sink;
    return sink;
}

}  // namespace

void report_note(const std::string& line) {
    if (const NoteSink& sink = current_sink()) {
        sink(line);
    }
}

ScopedNoteSink::ScopedNoteSink(NoteSink sink)
    : previous_(std::exchange(current_sink(), std::move(sink))) {}

ScopedNoteSink::~ScopedNoteSink() {
    current_sink() = std::move(previous_);
}

}  // namespace zentable

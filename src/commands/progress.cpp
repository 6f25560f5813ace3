#include "commands/progress.hpp"

#include <atomic>

namespace zentable::progress {

namespace {
std::atomic<Listener> listener{nullptr};
}

void report(Unit unit, double done, double total) {
    if (const Listener l = listener.load(std::memory_order_relaxed))
        l(unit, done, total);
}

void set_listener(Listener l) {
    listener.store(l);
}

}  // namespace zentable::progress

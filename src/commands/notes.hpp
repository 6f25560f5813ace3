#pragma once

#include <functional>
#include <string>

namespace zentable {

// A line of text that a command has to say beside its table, such as how an
// optimiser ended. The library never prints: standard output belongs to the
// tables, so the line goes to whatever sink the driver has installed, and
// nowhere when none is.
using NoteSink = std::function<void(const std::string& line)>;

void report_note(const std::string& line);

// Installs a sink for the life of the object, on this thread, and puts the
// previous one back afterwards: a driver wraps its calls in one.
class ScopedNoteSink {
  public:
    explicit ScopedNoteSink(NoteSink sink);
    ~ScopedNoteSink();
    ScopedNoteSink(const ScopedNoteSink&) = delete;
    ScopedNoteSink& operator=(const ScopedNoteSink&) = delete;

  private:
    NoteSink previous_;
};

}  // namespace zentable

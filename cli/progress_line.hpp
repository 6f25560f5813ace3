#pragma once

namespace zentable::cli {

// For the length of one call, a line on standard error that tells how long
// work is getting on: shown once the call has run about 2 seconds, updated at
// most ten times a second, and cleared at the end. Only when standard error
// is a terminal, so never in a pipe, a file or CI; it goes to that terminal
// itself, never into the stream the driver writes its complaints to.
class ProgressLine {
  public:
    explicit ProgressLine(bool wanted);
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

  private:
    bool active_ = false;
};

}  // namespace zentable::cli

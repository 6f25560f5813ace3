#pragma once

namespace zentable::progress {

// What long work counts as it goes.
enum class Unit { bytes, iterations, trees, epochs };

// Called by the numerics at natural points (a block of a file read, a Newton
// step, a tree built, an epoch), never from inner loops; `total` is 0 when
// not known. With no listener it costs one load and a branch.
void report(Unit unit, double done, double total = 0);

// The listener: the driver's progress line; null for none. It may be called
// from several threads at once.
using Listener = void (*)(Unit unit, double done, double total);
void set_listener(Listener listener);

}  // namespace zentable::progress

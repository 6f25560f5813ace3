#pragma once

#include <cstdint>
#include <memory>

namespace zentable {

// MT19937 with the standard tempering, made afresh from its seed by each use
// so that a sheet can reproduce its numbers. A seed above 0 starts the
// generator with that value; 0 takes a seed from the process-wide seed
// generator, which is seeded once from the clock and moves on with every seed
// it gives, so that two calls within one second still differ.
class MersenneTwister {
  public:
    explicit MersenneTwister(unsigned long seed);
    ~MersenneTwister();
    MersenneTwister(MersenneTwister&& other) noexcept;
    MersenneTwister& operator=(MersenneTwister&& other) noexcept;

    // The next 32-bit output.
    std::uint32_t next();

  private:
    // The engine stays out of this header, whose includers need not compile it.
    struct Engine;
    std::unique_ptr<Engine> engine_;
};

// The next output r as (r + 0.5) 2^-32: never 0 and never 1.
double uniform_draw(MersenneTwister& generator);

// The standard normal quantile of the next uniform_draw.
double normal_draw(MersenneTwister& generator);

// A seed from the process-wide seed generator that a seed of 0 stands for,
// for commands that must hand one timer seed to more than one generator.
unsigned long timer_seed();

// The 15-bit linear congruential generator behind every srand and rand of
// the commands (the k-means start, the mds shuffles, the neural network's
// weights): one process-wide state, set by seed_rand15,
// stepped as state * 214013 + 2531011 modulo 2^32 by rand15, which returns
// bits 16 to 30. Its range 0 to 32767 is what their scales rest on, and it
// draws the same numbers on every platform, unlike the C library's rand.
void seed_rand15(std::uint32_t seed);
int rand15();

}  // namespace zentable

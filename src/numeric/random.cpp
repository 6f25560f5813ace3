#include "numeric/random.hpp"

// QuantLib's headers are slow: only this file and the least-squares solver
// compile them.
#include <ql/math/randomnumbers/mt19937uniformrng.hpp>
#include <ql/math/randomnumbers/seedgenerator.hpp>

#include "numeric/distributions.hpp"

namespace zentable {

struct MersenneTwister::Engine {
    QuantLib::MersenneTwisterUniformRng rng;
};

namespace {

unsigned long seed_or_timer(unsigned long seed) {
    return seed > 0 ? seed : timer_seed();
}

}  // namespace

MersenneTwister::MersenneTwister(unsigned long seed)
    : engine_(std::make_unique<Engine>(
          Engine{QuantLib::MersenneTwisterUniformRng(seed_or_timer(seed))})) {}

MersenneTwister::~MersenneTwister() = default;
MersenneTwister::MersenneTwister(MersenneTwister&& other) noexcept = default;
MersenneTwister& MersenneTwister::operator=(MersenneTwister&& other) noexcept = default;

std::uint32_t MersenneTwister::next() {
    return static_cast<std::uint32_t>(engine_->rng.nextInt32());
}

double uniform_draw(MersenneTwister& generator) {
    return (static_cast<double>(generator.next()) + 0.5) * 2.3283064365386963e-10;
}

double normal_draw(MersenneTwister& generator) {
    return normal_inv(uniform_draw(generator));
}

unsigned long timer_seed() {
    return QuantLib::SeedGenerator::instance().get();
}

namespace {
std::uint32_t rand15_state = 1;
}  // namespace

void seed_rand15(std::uint32_t seed) {
    rand15_state = seed;
}

int rand15() {
    rand15_state = rand15_state * 214013u + 2531011u;
    return static_cast<int>((rand15_state >> 16) & 0x7FFFu);
}

}  // namespace zentable

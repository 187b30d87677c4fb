// A small random source whose numbers are the same on every machine.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>

namespace demodata {

// SplitMix64. The standard library's engines are portable too, but its distributions are not.
class Random {
  public:
    explicit Random(uint64_t seed) : state_(seed) {}

    uint64_t Next() {
        uint64_t z = (state_ += 0x9E3779B97F4A7C15u);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }
    // 0 <= result < 1
    double Unit() { return static_cast<double>(Next() >> 11) * 0x1.0p-53; }
    // 0 <= result < count; count must not be 0.
    size_t Below(size_t count) { return static_cast<size_t>(Next() % count); }
    // low <= result <= high
    int Between(int low, int high) { return low + static_cast<int>(Below(high - low + 1)); }
    bool Chance(double probability) { return Unit() < probability; }
    // Whole seconds of an exponential distribution, at least `least`, cut at ten times the mean.
    int Seconds(double mean, int least) {
        const double drawn = std::fmin(-mean * std::log(1.0 - Unit()), 10 * mean);
        return least + static_cast<int>(drawn);
    }

  private:
    uint64_t state_;
};

// Mixes the parts of a name for a random stream, so that one company's day does not depend on
// another.
inline uint64_t StreamSeed(uint64_t seed, int companyId, int64_t day) {
    Random mixer(seed ^ (static_cast<uint64_t>(companyId) << 48) ^ static_cast<uint64_t>(day));
    return mixer.Next();
}

}  // namespace demodata

#pragma once

#include <cstdint>
#include <random>

namespace Bench {

// Raw mt19937_64 output reduced by our own arithmetic. The engine's sequence is fixed by the
// standard; the std::*_distribution classes are not, and the data must come out the same on
// every machine.
class Random
{
public:
    explicit Random(std::uint64_t seed)
        : engine(seed)
    {
    }

    // A number in [0, n), n > 0. The modulo bias is below n / 2^64: nothing we could measure.
    std::uint64_t below(std::uint64_t n) { return engine() % n; }
    // True in `perMille` of 1000 calls, on average.
    bool chance(unsigned perMille) { return below(1000) < perMille; }

private:
    std::mt19937_64 engine;
};

// Spreads a seed and a stream number into an unrelated seed (the splitmix64 finaliser), so that
// the streams of one pair do not start from neighbouring states.
constexpr std::uint64_t mixSeed(std::uint64_t seed, std::uint64_t stream)
{
    std::uint64_t z = seed + (stream + 1) * 0x9E3779B97F4A7C15ull;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
}

} // namespace Bench

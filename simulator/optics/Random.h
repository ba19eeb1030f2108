#pragma once

#include <cstdint>

namespace qr9::optics {

/// Mixes 64 bits so that neighbouring inputs give unrelated outputs (the finaliser of SplitMix64).
constexpr std::uint64_t mixBits(std::uint64_t value)
{
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9U;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EBU;
    return value ^ (value >> 31);
}

/// Joins a key and one more number to a new key; the order of joining matters.
constexpr std::uint64_t joinKeys(std::uint64_t key, std::uint64_t number)
{
    return mixBits(key + 0x9E3779B97F4A7C15U + mixBits(number));
}

/// SplitMix64: a sequence of random numbers that is the same on every machine, which the distributions of the
/// standard library are not. Cheap to seed, so that every little square of a slide can have a sequence of its
/// own. Draw one number a statement: the order in which the arguments of a call are evaluated is the
/// compiler's.
class Random {
public:
    constexpr explicit Random(std::uint64_t key)
        : m_state(key)
    {
    }

    constexpr std::uint64_t next()
    {
        m_state += 0x9E3779B97F4A7C15U;
        return mixBits(m_state);
    }

    /// 0 to count - 1, evenly; count is at least 1.
    constexpr std::uint32_t below(std::uint32_t count)
    {
        return static_cast<std::uint32_t>(((next() >> 32) * count) >> 32);
    }

    /// From 0 up to but not including 1, in steps of 2^-32.
    constexpr double fraction() { return static_cast<double>(next() >> 32) / 4294967296.0; }

    /// From low up to but not including high.
    constexpr double between(double low, double high) { return low + (high - low) * fraction(); }

private:
    std::uint64_t m_state;
};

} // namespace qr9::optics

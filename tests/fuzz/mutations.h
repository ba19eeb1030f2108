#pragma once

#include <cstdint>
#include <random>
#include <vector>

using Input = std::vector<std::uint8_t>;

/// Damages inputs, the same way in every run.
class Mutations {
public:
    explicit Mutations(const std::vector<Input>& seeds)
        : m_seeds(seeds)
    {
    }

    /// The seed with one to four damages: bytes set, put in, cut out, doubled, or taken from another seed.
    Input damaged(const Input& seed);

private:
    std::size_t below(std::size_t limit) { return limit == 0 ? 0 : m_random() % limit; }
    void damage(Input& input);
    void setByte(Input& input);
    void setNumber(Input& input);
    void putIn(Input& input);
    void cutOut(Input& input);
    void doublePiece(Input& input);
    void takeOver(Input& input);

    const std::vector<Input>& m_seeds;
    std::mt19937_64 m_random { 9 };
};

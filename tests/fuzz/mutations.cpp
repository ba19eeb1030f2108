#include "tests/fuzz/mutations.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace {

constexpr std::size_t kMostDamages = 4;
constexpr std::size_t kLongestInput = std::size_t { 64 } * 1024;

/// Bytes on which the readers decide something.
constexpr std::array<std::uint8_t, 16> kTellingBytes { 0x00, 0x01, 0x7F, 0x80, 0xFF, '$', '#', ' ', ',', '\r',
    '\n', ';', '=', '[', '-', '9' };

/// Numbers at which counts and sizes overflow.
constexpr std::array<std::uint32_t, 8> kTellingNumbers { 0, 1, 0x7FFF, 0xFFFF, 0x10000, 0x7FFFFFFF,
    0x80000000, 0xFFFFFFFF };

Input::iterator at(Input& input, std::size_t place)
{
    return input.begin() + static_cast<std::ptrdiff_t>(place);
}

} // namespace

Input Mutations::damaged(const Input& seed)
{
    Input input = seed;
    for (std::size_t left = 1 + below(kMostDamages); left > 0; --left) {
        damage(input);
    }
    input.resize(std::min(input.size(), kLongestInput));
    return input;
}

void Mutations::damage(Input& input)
{
    using Damage = void (Mutations::*)(Input&);
    constexpr std::array<Damage, 6> kDamages { &Mutations::setByte, &Mutations::setNumber, &Mutations::putIn,
        &Mutations::cutOut, &Mutations::doublePiece, &Mutations::takeOver };
    (this->*kDamages[below(kDamages.size())])(input);
}

void Mutations::setByte(Input& input)
{
    if (!input.empty()) {
        input[below(input.size())] = static_cast<std::uint8_t>(m_random());
    }
}

/// Two or four bytes, low byte first.
void Mutations::setNumber(Input& input)
{
    const std::size_t width = 2 + 2 * below(2);
    if (input.size() < width) {
        return;
    }
    const std::size_t place = below(input.size() - width + 1);
    const std::uint32_t number = kTellingNumbers[below(kTellingNumbers.size())];
    for (std::size_t i = 0; i < width; ++i) {
        input[place + i] = static_cast<std::uint8_t>(number >> 8 * i);
    }
}

void Mutations::putIn(Input& input)
{
    const std::size_t count = 1 + below(4);
    input.insert(at(input, below(input.size() + 1)), count, kTellingBytes[below(kTellingBytes.size())]);
}

void Mutations::cutOut(Input& input)
{
    const std::size_t begin = below(input.size());
    const std::size_t end = std::min(input.size(), begin + 1 + below(input.size()));
    input.erase(at(input, begin), at(input, end));
}

void Mutations::doublePiece(Input& input)
{
    const std::size_t begin = below(input.size());
    const std::size_t end = std::min(input.size(), begin + below(64));
    const Input piece(at(input, begin), at(input, end));
    input.insert(at(input, end), piece.begin(), piece.end());
}

void Mutations::takeOver(Input& input)
{
    const Input& other = m_seeds[below(m_seeds.size())];
    const std::size_t begin = below(other.size());
    const std::size_t end = std::min(other.size(), begin + below(64));
    input.insert(at(input, below(input.size() + 1)),
        std::next(other.begin(), static_cast<std::ptrdiff_t>(begin)),
        std::next(other.begin(), static_cast<std::ptrdiff_t>(end)));
}

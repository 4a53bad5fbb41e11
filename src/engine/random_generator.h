#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace lumiran {

// The process-wide uniform generator in [0, 1). It is never seeded, so a
// fresh process repeats its sequence, and preview and run draw from the same
// one instance held by the program state.
class RandomGenerator {
  public:
    static constexpr std::uint32_t InitialState = 327680;

    // Next value in [0, 1), a multiple of 2^-24.
    [[nodiscard]] double next();
    [[nodiscard]] std::uint32_t state() const { return state_; }

    // The next out.size() values in turn, as that many calls of next() give
    // them; several runs of the sequence at once, so the loop vectorises.
    void take(std::span<double> out);
    // Moves on by count values without making them.
    void skip(std::uint64_t count);
    // A copy that stands count values further on: the values a loop would
    // draw there can be made on another thread, in any order.
    [[nodiscard]] RandomGenerator ahead(std::uint64_t count) const {
        RandomGenerator later = *this;
        later.skip(count);
        return later;
    }

  private:
    std::uint32_t state_ = InitialState;
};

// A copy of a generator whose values are made in blocks (several at once)
// and handed out in order, as that many next() calls of the copy would give
// them. The generator copied from does not move; drawn() tells by how much
// a caller that owns it should skip it on.
class RandomBlocks {
  public:
    explicit RandomBlocks(const RandomGenerator& from) : random_(from) {}

    [[nodiscard]] double next() {
        if (at_ == Block) {
            random_.take(values_);
            at_ = 0;
        }
        ++drawn_;
        return values_[at_++];
    }
    [[nodiscard]] std::uint64_t drawn() const { return drawn_; }

  private:
    static constexpr std::size_t Block = 512;
    RandomGenerator random_;
    std::array<double, Block> values_{};
    std::size_t at_ = Block;
    std::uint64_t drawn_ = 0;
};

} // namespace lumiran

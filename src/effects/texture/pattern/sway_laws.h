#pragma once

// The coordinate laws of the colour sways: for each type a few steps, each
// setting u (from x) or v (from y) to A times a sum of waves of x, y or of
// the u or v set before, plus the coordinate: u = A f(a K / W) + ... + x.
#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace lumiran::pattern {

enum class Wave : std::uint8_t { Sin, Cos, Tan };
enum class Axis : std::uint8_t { X, Y, U, V };

struct WaveTerm {
    Wave wave = Wave::Sin;
    Axis of = Axis::X;
};

struct LawStep {
    Axis sets = Axis::U; // U or V
    std::uint8_t count = 0;
    std::array<WaveTerm, 2> terms{};
};

struct SwayLaw {
    std::uint8_t count = 0;
    std::array<LawStep, 3> steps{};
};

// The laws of Color_Sway1 (0..5, as the types name them), Color_Sway2..4
// (0..10 each); sway is 1..4.
[[nodiscard]] std::span<const SwayLaw> swayLaws(int sway);

// u and v at (x, y) for amplitude A and wave W by a law.
struct Coordinates {
    double u = 0;
    double v = 0;
};
[[nodiscard]] Coordinates applyLaw(const SwayLaw& law, double x, double y, double amplitude,
                                   double wave);

// applyLaw over a rectangle, a row at a time and step by step. A term whose
// argument follows x alone (x, or a u that no y reached yet) is worked out
// once a column, one that follows y alone once a row: only the terms of a
// u or v that depends on both remain per pixel. Every value is the one
// applyLaw gives, bit for bit.
class SwayField {
  public:
    SwayField(const SwayLaw& law, double amplitude, double wave, int firstColumn, int endColumn);

    // The longest run of columns row() takes at once.
    static constexpr std::size_t RunColumns = 512;

    // u and v of the columns first..end-1 of row y (at most RunColumns of
    // them) into u and v, as long as the run.
    void row(int y, int first, int end, std::span<double> u, std::span<double> v) const;

    // Whether u depends on x alone and v on y alone.
    [[nodiscard]] bool uFollowsX() const { return uFollowsX_; }
    [[nodiscard]] bool vFollowsY() const { return vFollowsY_; }

  private:
    static constexpr std::size_t Terms = 6; // steps times terms a step

    // Where a term's value comes from.
    enum class Source : std::uint8_t { Column, Row, PixelU, PixelV };

    [[nodiscard]] double term(const WaveTerm& t, double of) const;
    // The terms worked out once a row, for row y.
    [[nodiscard]] std::array<double, Terms> rowTerms(double y) const;
    [[nodiscard]] const double* columnTerm(std::size_t k) const {
        return columnTerms_.data() + k * columns_;
    }

    SwayLaw law_;
    double amplitude_;
    double wave_;
    int firstColumn_;
    std::size_t columns_;
    std::array<Source, Terms> sources_{};
    std::vector<double> columnTerms_; // term by term, a value a column
    bool uFollowsX_ = true;
    bool vFollowsY_ = true;
};

} // namespace lumiran::pattern

#include "effects/texture/pattern/sway_laws.h"

#include <algorithm>
#include <cmath>

namespace lumiran::pattern {
namespace {

constexpr double K = 6.2831;

constexpr WaveTerm S(Axis a) {
    return {Wave::Sin, a};
}
constexpr WaveTerm C(Axis a) {
    return {Wave::Cos, a};
}
constexpr WaveTerm T(Axis a) {
    return {Wave::Tan, a};
}
constexpr LawStep U(WaveTerm t) {
    return {Axis::U, 1, {t}};
}
constexpr LawStep U(WaveTerm t1, WaveTerm t2) {
    return {Axis::U, 2, {t1, t2}};
}
constexpr LawStep V(WaveTerm t) {
    return {Axis::V, 1, {t}};
}
constexpr LawStep V(WaveTerm t1, WaveTerm t2) {
    return {Axis::V, 2, {t1, t2}};
}
constexpr SwayLaw law(LawStep a, LawStep b) {
    return {2, {a, b}};
}
constexpr SwayLaw law(LawStep a, LawStep b, LawStep c) {
    return {3, {a, b, c}};
}

constexpr Axis X = Axis::X;
constexpr Axis Y = Axis::Y;
constexpr Axis Uc = Axis::U; // the u set by an earlier step
constexpr Axis Vc = Axis::V;

// Color_Sway1: u and v from the two coordinates, as the types list them.
constexpr std::array<SwayLaw, 6> Sway1{{
    law(U(S(Y)), V(S(X))),
    law(U(C(Y)), V(C(X))),
    law(U(T(Y)), V(T(X))),
    law(U(C(X), S(Y)), V(C(Y), S(X))),
    law(U(S(X), S(Y)), V(S(Y), S(X))),
    law(U(C(X), C(Y)), V(C(Y), C(X))),
}};

// Color_Sway2: u first, then v bent by u. Types 0 and 1 are the sine and
// cosine chains; the rest mix the waves and add a second term.
constexpr std::array<SwayLaw, 11> Sway2{{
    law(U(S(X)), V(S(Uc))),
    law(U(C(X)), V(C(Uc))),
    law(U(S(X)), V(C(Uc))),
    law(U(C(X)), V(S(Uc))),
    law(U(S(X), S(Y)), V(S(Uc))),
    law(U(C(X), C(Y)), V(C(Uc))),
    law(U(S(X), C(Y)), V(S(Uc), C(X))),
    law(U(S(Y)), V(S(Uc), S(X))),
    law(U(C(Y)), V(C(Uc), C(X))),
    law(U(S(X)), V(S(Uc), C(Uc))),
    law(U(C(X), S(X)), V(C(Uc), S(Y))),
}};

// Color_Sway3: u, v bent by u, and u bent once more by v; types 0..2 the
// sine, cosine and tangent chains.
constexpr std::array<SwayLaw, 11> Sway3{{
    law(U(S(X)), V(S(Uc)), U(S(Vc))),
    law(U(C(X)), V(C(Uc)), U(C(Vc))),
    law(U(T(X)), V(T(Uc)), U(T(Vc))),
    law(U(S(Y)), V(S(Uc)), U(S(Vc))),
    law(U(C(Y)), V(C(Uc)), U(C(Vc))),
    law(U(S(X), C(Y)), V(S(Uc)), U(C(Vc))),
    law(U(S(X)), V(C(Uc), S(X)), U(S(Vc))),
    law(U(C(X), C(Y)), V(S(Uc), S(Y)), U(C(Vc))),
    law(U(T(Y)), V(S(Uc)), U(S(Vc))),
    law(U(S(X), S(Y)), V(C(Uc), C(X)), U(S(Vc), S(Y))),
    law(U(C(X)), V(T(Uc)), U(C(Vc))),
}};

// Color_Sway4: types 0 and 1 the chains started from v, types 3 and 4 as
// Color_Sway1's.
constexpr std::array<SwayLaw, 11> Sway4{{
    law(V(S(Y)), U(S(Vc))),
    law(V(C(Y)), U(C(Vc))),
    law(V(T(Y)), U(S(Vc))),
    law(U(C(X), S(Y)), V(C(Y), S(X))),
    law(U(S(X), S(Y)), V(S(Y), S(X))),
    law(V(S(X)), U(S(Vc), S(Y))),
    law(V(C(X)), U(C(Vc), C(Y))),
    law(V(S(Y), C(X)), U(S(Vc))),
    law(V(S(X), S(Y)), U(C(Vc), S(X))),
    law(U(S(Y)), V(S(X), C(Uc))),
    law(V(T(X)), U(S(Vc), C(Y))),
}};

double waveOf(Wave wave, double angle) {
    switch (wave) {
    case Wave::Sin:
        return std::sin(angle);
    case Wave::Cos:
        return std::cos(angle);
    case Wave::Tan:
        return std::tan(angle);
    }
    return 0;
}

} // namespace

std::span<const SwayLaw> swayLaws(int sway) {
    switch (sway) {
    case 1:
        return Sway1;
    case 2:
        return Sway2;
    case 3:
        return Sway3;
    default:
        return Sway4;
    }
}

Coordinates applyLaw(const SwayLaw& law, double x, double y, double amplitude, double wave) {
    Coordinates c{x, y};
    for (std::uint8_t s = 0; s < law.count; ++s) {
        const LawStep& step = law.steps[s];
        const bool setsU = step.sets == Axis::U;
        double value = 0;
        for (std::uint8_t t = 0; t < step.count; ++t) {
            const WaveTerm& term = step.terms[t];
            const double of = term.of == Axis::X   ? x
                              : term.of == Axis::Y ? y
                              : term.of == Axis::U ? c.u
                                                   : c.v;
            value = value + amplitude * waveOf(term.wave, of * K / wave);
        }
        // A sum of terms is added term by term, then the coordinate.
        if (setsU) {
            c.u = value + x;
        } else {
            c.v = value + y;
        }
    }
    return c;
}

SwayField::SwayField(const SwayLaw& law, double amplitude, double wave, int firstColumn,
                     int endColumn)
    : law_(law), amplitude_(amplitude), wave_(wave), firstColumn_(firstColumn),
      columns_(static_cast<std::size_t>(std::max(endColumn - firstColumn, 0))) {
    // Which coordinates u and v depend on, step by step: x for u and y for
    // v to begin with, then those of every term.
    bool uOnY = false, vOnX = false;
    for (std::uint8_t s = 0; s < law.count; ++s) {
        const LawStep& step = law.steps[s];
        bool onX = step.sets == Axis::U, onY = step.sets == Axis::V;
        for (std::uint8_t t = 0; t < step.count; ++t) {
            Source source = Source::Column;
            switch (step.terms[t].of) {
            case Axis::X:
                source = Source::Column;
                break;
            case Axis::Y:
                source = Source::Row;
                break;
            case Axis::U:
                source = uOnY ? Source::PixelU : Source::Column;
                break;
            case Axis::V:
                source = vOnX ? Source::PixelV : Source::Row;
                break;
            }
            sources_[s * 2u + t] = source;
            onX = onX || source != Source::Row;
            onY = onY || source != Source::Column;
        }
        if (step.sets == Axis::U) {
            uOnY = onY;
        } else {
            vOnX = onX;
        }
    }
    uFollowsX_ = !uOnY;
    vFollowsY_ = !vOnX;

    // The column terms, following u along the steps that leave it on x
    // alone; a term of u is a column term only while u is such a value.
    columnTerms_.assign(Terms * columns_, 0.0);
    for (std::size_t i = 0; i < columns_; ++i) {
        const int x = firstColumn + static_cast<int>(i);
        double u = x;
        for (std::uint8_t s = 0; s < law.count; ++s) {
            const LawStep& step = law.steps[s];
            double value = 0;
            bool onXAlone = true;
            for (std::uint8_t t = 0; t < step.count; ++t) {
                const std::size_t k = s * 2u + t;
                if (sources_[k] != Source::Column) {
                    onXAlone = false;
                    continue;
                }
                const WaveTerm& w = step.terms[t];
                const double v = term(w, w.of == Axis::X ? x : u);
                columnTerms_[k * columns_ + i] = v;
                value = value + v;
            }
            if (step.sets == Axis::U && onXAlone) u = value + x;
        }
    }
}

double SwayField::term(const WaveTerm& t, double of) const {
    return amplitude_ * waveOf(t.wave, of * K / wave_);
}

std::array<double, SwayField::Terms> SwayField::rowTerms(double y) const {
    std::array<double, Terms> row{};
    double v = y;
    for (std::uint8_t s = 0; s < law_.count; ++s) {
        const LawStep& step = law_.steps[s];
        double value = 0;
        bool onYAlone = true;
        for (std::uint8_t t = 0; t < step.count; ++t) {
            const std::size_t k = s * 2u + t;
            if (sources_[k] != Source::Row) {
                onYAlone = false;
                continue;
            }
            const WaveTerm& w = step.terms[t];
            row[k] = term(w, w.of == Axis::Y ? y : v);
            value = value + row[k];
        }
        if (step.sets == Axis::V && onYAlone) v = value + y;
    }
    return row;
}

void SwayField::row(int y, int first, int end, std::span<double> u, std::span<double> v) const {
    const auto n = std::min(static_cast<std::size_t>(end - first), RunColumns);
    const std::array<double, Terms> rowTerm = rowTerms(y);
    const auto i0 = static_cast<std::size_t>(first - firstColumn_);
    const double dy = y;
    double* __restrict pu = u.data();
    double* __restrict pv = v.data();
    for (std::size_t i = 0; i < n; ++i) {
        pu[i] = first + static_cast<int>(i);
        pv[i] = dy;
    }
    double sums[RunColumns];
    double* __restrict value = sums;
    for (std::uint8_t s = 0; s < law_.count; ++s) {
        const LawStep& step = law_.steps[s];
        std::fill(value, value + n, 0.0);
        // Term by term in order, as applyLaw adds them.
        for (std::uint8_t t = 0; t < step.count; ++t) {
            const WaveTerm& w = step.terms[t];
            const std::size_t k = s * 2u + t;
            switch (sources_[k]) {
            case Source::Column: {
                const double* __restrict c = columnTerm(k) + i0;
                for (std::size_t i = 0; i < n; ++i)
                    value[i] = value[i] + c[i];
                break;
            }
            case Source::Row:
                for (std::size_t i = 0; i < n; ++i)
                    value[i] = value[i] + rowTerm[k];
                break;
            case Source::PixelU:
                for (std::size_t i = 0; i < n; ++i)
                    value[i] = value[i] + term(w, pu[i]);
                break;
            case Source::PixelV:
                for (std::size_t i = 0; i < n; ++i)
                    value[i] = value[i] + term(w, pv[i]);
                break;
            }
        }
        if (step.sets == Axis::U) {
            for (std::size_t i = 0; i < n; ++i)
                pu[i] = value[i] + (first + static_cast<int>(i));
        } else {
            for (std::size_t i = 0; i < n; ++i)
                pv[i] = value[i] + dy;
        }
    }
}

} // namespace lumiran::pattern

#include "effects/texture/pattern/sway_laws.h"

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
    : law_(law), amplitude_(amplitude), wave_(wave), firstColumn_(firstColumn) {
    for (int x = firstColumn; x < endColumn; ++x) {
        for (std::uint8_t s = 0; s < law.count; ++s) {
            for (std::uint8_t t = 0; t < law.steps[s].count; ++t) {
                const WaveTerm& w = law.steps[s].terms[t];
                columnTerms_.push_back(w.of == Axis::X ? term(w, x) : 0);
            }
            for (std::uint8_t t = law.steps[s].count; t < 2; ++t)
                columnTerms_.push_back(0);
        }
        for (std::uint8_t s = law.count; s < 3; ++s) {
            columnTerms_.push_back(0);
            columnTerms_.push_back(0);
        }
    }
    // Which coordinates u and v depend on, step by step: x for u and y for
    // v to begin with, then those of every term.
    bool uOnY = false, vOnX = false;
    for (std::uint8_t s = 0; s < law.count; ++s) {
        const LawStep& step = law.steps[s];
        bool onX = step.sets == Axis::U, onY = step.sets == Axis::V;
        for (std::uint8_t t = 0; t < step.count; ++t) {
            switch (step.terms[t].of) {
            case Axis::X:
                onX = true;
                break;
            case Axis::Y:
                onY = true;
                break;
            case Axis::U:
                onX = true;
                onY = onY || uOnY;
                break;
            case Axis::V:
                onY = true;
                onX = onX || vOnX;
                break;
            }
        }
        if (step.sets == Axis::U) {
            uOnY = onY;
        } else {
            vOnX = onX;
        }
    }
    uFollowsX_ = !uOnY;
    vFollowsY_ = !vOnX;
}

double SwayField::term(const WaveTerm& t, double of) const {
    return amplitude_ * waveOf(t.wave, of * K / wave_);
}

SwayField::RowTerms SwayField::rowTerms(double y) const {
    RowTerms row{};
    for (std::uint8_t s = 0; s < law_.count; ++s) {
        for (std::uint8_t t = 0; t < law_.steps[s].count; ++t) {
            const WaveTerm& w = law_.steps[s].terms[t];
            if (w.of == Axis::Y) row[s * 2u + t] = term(w, y);
        }
    }
    return row;
}

Coordinates SwayField::at(int x, double y, const RowTerms& row) const {
    const double* column = columnTerms_.data() + static_cast<std::size_t>(x - firstColumn_) * Terms;
    Coordinates c{static_cast<double>(x), y};
    for (std::uint8_t s = 0; s < law_.count; ++s) {
        const LawStep& step = law_.steps[s];
        double value = 0;
        for (std::uint8_t t = 0; t < step.count; ++t) {
            const WaveTerm& w = step.terms[t];
            const std::size_t k = s * 2u + t;
            const double v = w.of == Axis::X   ? column[k]
                             : w.of == Axis::Y ? row[k]
                             : w.of == Axis::U ? term(w, c.u)
                                               : term(w, c.v);
            value = value + v;
        }
        if (step.sets == Axis::U) {
            c.u = value + x;
        } else {
            c.v = value + y;
        }
    }
    return c;
}

} // namespace lumiran::pattern

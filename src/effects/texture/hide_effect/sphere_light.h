#pragma once

// The shading rule of the lit spheres: a light vector, the normal of a
// sphere, the diffuse and the specular term.
#include "engine/calculation.h"

#include <cstdint>
#include <vector>

namespace lumiran::hide {

struct Vector3 {
    double x = 0;
    double y = 0;
    double z = 0;
};

// The sliders over 10, normalised; all zero stays zero.
[[nodiscard]] Vector3 lightVector(double x, double y, double z);

struct Shade {
    bool inside = false;
    double diffuse = 0;
    double specular = 0;
};

// The sphere of radius q at offset (dx, dy) from its centre.
[[nodiscard]] Shade sphereShade(const Vector3& light, double dx, double dy, double q);

// The diffuse and specular terms for a unit normal.
[[nodiscard]] Shade shadeNormal(const Vector3& light, const Vector3& normal);

// The shading along one row of a sphere of radius q, dy from its centre,
// at every offset dx from -q to q: sphereShade's terms to the bit. The
// normal at -dx is the one at dx with its x negated, so each distance is
// worked out once for the row, however many tiles the row crosses, and the
// loops run eight offsets at a time where the processor can.
class SphereRow {
  public:
    SphereRow(const Vector3& light, int q);

    void shade(double dy);

    [[nodiscard]] int radius() const { return q_; }

    // Offsets beyond the radius lie outside the sphere.
    [[nodiscard]] bool inside(int dx) const {
        return dx >= -q_ && dx <= q_ && inside_[static_cast<std::size_t>(dx + q_)] != 0;
    }
    // For an offset inside the sphere.
    [[nodiscard]] Shade at(int dx) const {
        const auto i = static_cast<std::size_t>(dx + q_);
        return {true, diffuse_[i], specular_[i]};
    }
    // The terms and flags from offset dx (within -q..q) on, for loops over
    // a run of offsets.
    [[nodiscard]] const double* diffuseFrom(int dx) const { return diffuse_.data() + dx + q_; }
    [[nodiscard]] const double* specularFrom(int dx) const { return specular_.data() + dx + q_; }
    [[nodiscard]] const std::uint8_t* insideFrom(int dx) const { return inside_.data() + dx + q_; }

  private:
    Vector3 light_;
    Vector3 half_;
    bool dark_;
    int q_;
    // Index dx + q.
    std::vector<double> diffuse_;
    std::vector<double> specular_;
    std::vector<std::uint8_t> inside_;
    // The normal at offset 0..q.
    std::vector<double> normalX_;
    std::vector<double> normalY_;
    std::vector<double> normalZ_;
};

// The terms of a flat picture under a lamp, along a row: the lamp at
// (lampX, row + toLampY, lampZ) seen from pixels first .. first + count - 1,
// with the picture's normal straight up. shadeNormal's terms to the bit.
void lampRow(double lampX, double toLampY, double lampZ, int first, int count, double* diffuse,
             double* specular);

// The three reflection weights and the ambient term.
struct Lighting {
    Vector3 light;
    double reflection[3] = {0, 0, 0}; // red, green, blue
    double ambient = 0;
};

// round(c d + A s + ambient) per channel, before the post-step.
[[nodiscard]] Rgb16 shadeColour(const Lighting& lighting, const Shade& shade, int r, int g, int b);

// True when round(c d + A s + ambient) fits 16 bits for every channel value
// c and every d and s a shading can give (at most 1, with room for
// rounding): such a shading needs no overflow check.
[[nodiscard]] bool shadeFitsSixteenBits(const Lighting& lighting);

// The sphere's radius for a percent of the rectangle's smaller side; a
// radius below 1 tiles nothing and is the overflow error.
[[nodiscard]] int sphereRadius(double percent, int width, int height);

} // namespace lumiran::hide

#pragma once

// The shading rule of the lit spheres: a light vector, the normal of a
// sphere, the diffuse and the specular term.
#include "engine/calculation.h"

#include <cstdint>

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

// The three reflection weights and the ambient term.
struct Lighting {
    Vector3 light;
    double reflection[3] = {0, 0, 0}; // red, green, blue
    double ambient = 0;
};

// round(c d + A s + ambient) per channel, before the post-step.
[[nodiscard]] Rgb16 shadeColour(const Lighting& lighting, const Shade& shade, int r, int g, int b);

// The sphere's radius for a percent of the rectangle's smaller side; a
// radius below 1 tiles nothing and is the overflow error.
[[nodiscard]] int sphereRadius(double percent, int width, int height);

} // namespace lumiran::hide

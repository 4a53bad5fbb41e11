#include "effects/texture/hide_effect/sphere_light.h"

#include "engine/effect_error.h"
#include "engine/numeric.h"

#include <algorithm>
#include <cmath>

namespace lumiran::hide {

Vector3 lightVector(double x, double y, double z) {
    Vector3 v{x / 10, y / 10, z / 10};
    const double n = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
    if (n == 0) return v;
    return {v.x / n, v.y / n, v.z / n};
}

namespace {

bool dark(const Vector3& light) {
    return light.x == 0 && light.y == 0 && light.z == 0;
}

// The half vector between the light and the view (0, 0, 1), normalised.
Vector3 halfVector(const Vector3& light) {
    const Vector3 h{light.x / 2, light.y / 2, (light.z + 1) / 2};
    const double n = std::sqrt(h.x * h.x + h.y * h.y + h.z * h.z);
    if (n == 0) return {};
    return {h.x / n, h.y / n, h.z / n};
}

// dot^100 as dot^64 dot^32 dot^4, never below 0.
double highlight(double dot) {
    const double d2 = dot * dot, d4 = d2 * d2, d8 = d4 * d4, d16 = d8 * d8, d32 = d16 * d16;
    return std::max(0.0, d32 * d32 * d32 * d4);
}

} // namespace

Shade shadeNormal(const Vector3& light, const Vector3& normal) {
    Shade shade;
    shade.inside = true;
    // Without a light there is neither diffuse nor highlight: the half
    // vector would otherwise be the view and light the sphere's top.
    if (dark(light)) return shade;
    shade.diffuse = std::max(0.0, light.x * normal.x + light.y * normal.y + light.z * normal.z);
    const Vector3 h = halfVector(light);
    shade.specular = highlight(h.x * normal.x + h.y * normal.y + h.z * normal.z);
    return shade;
}

Shade sphereShade(const Vector3& light, double dx, double dy, double q) {
    const double h2 = q * q - (dx * dx + dy * dy);
    if (h2 < 0) return {};
    const double z = std::sqrt(h2);
    const double n = std::sqrt(dx * dx + dy * dy + z * z);
    const Vector3 normal = n == 0 ? Vector3{} : Vector3{dx / n, dy / n, z / n};
    return shadeNormal(light, normal);
}

Rgb16 shadeColour(const Lighting& lighting, const Shade& shade, int r, int g, int b) {
    const int c[3] = {r, g, b};
    std::int16_t out[3];
    for (int i = 0; i < 3; ++i) {
        out[i] = roundTo<std::int16_t>(c[i] * shade.diffuse +
                                       lighting.reflection[i] * shade.specular + lighting.ambient);
    }
    return {out[0], out[1], out[2]};
}

SphereRow::SphereRow(const Vector3& light, int q)
    : light_(light), half_(halfVector(light)), dark_(dark(light)), q_(q),
      diffuse_(static_cast<std::size_t>(2 * q + 1)), specular_(diffuse_.size()),
      inside_(diffuse_.size()), normalX_(static_cast<std::size_t>(q + 1)),
      normalY_(normalX_.size()), normalZ_(normalX_.size()) {}

namespace {

// The loops of SphereRow::shade. They have no branch and no call: every
// case is worked out and selected (a square root of a negative is never
// kept), the build sets no errno for the square roots, and the
// arrays come as restrict parameters, so they vectorise.

// Offsets 0 .. end - 1: the normals and the terms. A point outside the
// sphere gets the zero normal, whose terms are 0.
void shadeHalf(double qq, double dy, Vector3 l, Vector3 h, std::ptrdiff_t end,
               double* __restrict normalX, double* __restrict normalY, double* __restrict normalZ,
               double* __restrict diffuse, double* __restrict specular,
               std::uint8_t* __restrict inside) {
    const double dyy = dy * dy;
    for (std::ptrdiff_t t = 0; t < end; ++t) {
        const auto x = static_cast<double>(t);
        const double d2 = x * x + dyy;
        const double h2 = qq - d2;
        const bool in = !(h2 < 0);
        const double z = std::sqrt(in ? h2 : 0.0);
        const double n = std::sqrt(d2 + z * z);
        const bool zero = !in || n == 0;
        const double nx = zero ? 0.0 : x / n;
        const double ny = zero ? 0.0 : dy / n;
        const double nz = zero ? 0.0 : z / n;
        normalX[t] = nx;
        normalY[t] = ny;
        normalZ[t] = nz;
        diffuse[t] = std::max(0.0, l.x * nx + l.y * ny + l.z * nz);
        specular[t] = highlight(h.x * nx + h.y * ny + h.z * nz);
        inside[t] = in ? 1 : 0;
    }
}

// Offsets -1 .. -(end - 1) from the normals at 1 .. end - 1: (-t) / n is
// -(t / n) to the bit. The outputs point at offset 0 and are written below.
void shadeMirror(Vector3 l, Vector3 h, std::ptrdiff_t end, const double* __restrict normalX,
                 const double* __restrict normalY, const double* __restrict normalZ,
                 double* __restrict diffuse, double* __restrict specular) {
    for (std::ptrdiff_t t = 1; t < end; ++t) {
        const double nx = -normalX[t], ny = normalY[t], nz = normalZ[t];
        diffuse[-t] = std::max(0.0, l.x * nx + l.y * ny + l.z * nz);
        specular[-t] = highlight(h.x * nx + h.y * ny + h.z * nz);
    }
}

} // namespace

void SphereRow::shade(double dy) {
    const auto q = static_cast<double>(q_);
    const auto half = static_cast<std::size_t>(q_);
    const auto end = static_cast<std::ptrdiff_t>(q_) + 1;
    // Without a light every term is 0: zero vectors give exactly that.
    const Vector3 l = dark_ ? Vector3{} : light_;
    const Vector3 h = dark_ ? Vector3{} : half_;
    double* diffuse = diffuse_.data() + half;
    double* specular = specular_.data() + half;
    std::uint8_t* inside = inside_.data() + half;
    shadeHalf(q * q, dy, l, h, end, normalX_.data(), normalY_.data(), normalZ_.data(), diffuse,
              specular, inside);
    shadeMirror(l, h, end, normalX_.data(), normalY_.data(), normalZ_.data(), diffuse, specular);
    std::reverse_copy(inside + 1, inside + end, inside_.data());
}

namespace {

void lampTerms(double lampX, double toLampY, double lampZ, int first, int count,
               double* __restrict diffuse, double* __restrict specular) {
    for (int i = 0; i < count; ++i) {
        const double a = lampX - static_cast<double>(first + i);
        const double n = std::sqrt(a * a + toLampY * toLampY + lampZ * lampZ);
        // Right under the lamp the light is the normal itself.
        const bool under = n == 0;
        const double lx = under ? 0.0 : a / n;
        const double ly = under ? 0.0 : toLampY / n;
        const double lz = under ? 1.0 : lampZ / n;
        // The normal is (0, 0, 1); its zero terms are kept as products, as
        // shadeNormal has them, for the signs of zeros.
        diffuse[i] = std::max(0.0, lx * 0.0 + ly * 0.0 + lz * 1.0);
        const double hx = lx / 2, hy = ly / 2, hz = (lz + 1) / 2;
        const double hn = std::sqrt(hx * hx + hy * hy + hz * hz);
        const bool flat = hn == 0;
        const double ux = flat ? 0.0 : hx / hn;
        const double uy = flat ? 0.0 : hy / hn;
        const double uz = flat ? 0.0 : hz / hn;
        specular[i] = highlight(ux * 0.0 + uy * 0.0 + uz * 1.0);
    }
}

} // namespace

void lampRow(double lampX, double toLampY, double lampZ, int first, int count, double* diffuse,
             double* specular) {
    lampTerms(lampX, toLampY, lampZ, first, count, diffuse, specular);
}

bool shadeFitsSixteenBits(const Lighting& lighting) {
    if (!std::isfinite(lighting.ambient)) return false;
    double largest = 0;
    for (const double weight : lighting.reflection)
        largest = std::max(largest, std::abs(weight));
    // d and s are at most 1 and a few units in the last place.
    return 256 * 1.001 + largest * 1.001 + std::abs(lighting.ambient) < 32767;
}

int sphereRadius(double percent, int width, int height) {
    const int q = roundTo<std::int32_t>(std::min(width, height) * percent / 100);
    if (q < 1) throw EffectError::overflow();
    return q;
}

} // namespace lumiran::hide

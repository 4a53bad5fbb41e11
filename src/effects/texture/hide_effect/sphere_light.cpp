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

Shade shadeNormal(const Vector3& light, const Vector3& normal) {
    Shade shade;
    shade.inside = true;
    // Without a light there is neither diffuse nor highlight: the half
    // vector would otherwise be the view and light the sphere's top.
    if (light.x == 0 && light.y == 0 && light.z == 0) return shade;
    shade.diffuse = std::max(0.0, light.x * normal.x + light.y * normal.y + light.z * normal.z);
    // The half vector between the light and the view (0, 0, 1).
    Vector3 h{light.x / 2, light.y / 2, (light.z + 1) / 2};
    const double hn = std::sqrt(h.x * h.x + h.y * h.y + h.z * h.z);
    if (hn != 0)
        h = {h.x / hn, h.y / hn, h.z / hn};
    else
        h = {};
    const double dot = h.x * normal.x + h.y * normal.y + h.z * normal.z;
    // dot^100 as dot^64 dot^32 dot^4.
    const double d2 = dot * dot, d4 = d2 * d2, d8 = d4 * d4, d16 = d8 * d8, d32 = d16 * d16;
    shade.specular = std::max(0.0, d32 * d32 * d32 * d4);
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

int sphereRadius(double percent, int width, int height) {
    const int q = roundTo<std::int32_t>(std::min(width, height) * percent / 100);
    if (q < 1) throw EffectError::overflow();
    return q;
}

} // namespace lumiran::hide

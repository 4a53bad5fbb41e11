#include "effects/texture/mosaic/relief.h"

#include "engine/numeric.h"

#include <cmath>

namespace lumiran::mosaic {
namespace {

struct Vector {
    double x = 0;
    double y = 0;
    double z = 0;
    [[nodiscard]] double dot(const Vector& o) const { return x * o.x + y * o.y + z * o.z; }
    // Divided by its length; a length of 0 leaves the zero vector.
    [[nodiscard]] Vector unit() const {
        const double n = std::sqrt(dot(*this));
        return n == 0 ? Vector{} : Vector{x / n, y / n, z / n};
    }
};

constexpr double Pi = 3.14159;
// The relief's steepest slope: gentle, so that a side turned from the light
// still shows its colour.
constexpr double Slope = 0.5;

// The surface normal of cell (i, j): the relief's slope turned into
// (-dh/dx, -dh/dy, 1), so that a side facing right points right, as the
// sphere's (dx, dy, z) does.
Vector normalOf(int i, int j, int size, std::uint8_t kind) {
    const double u = (j + 0.5) / size; // 0..1 across the block
    const double v = (i + 0.5) / size;
    if (kind == 0) {
        const double slopeX = Slope * std::cos(Pi * u) * std::sin(Pi * v);
        const double slopeY = Slope * std::sin(Pi * u) * std::cos(Pi * v);
        return Vector{-slopeX, -slopeY, 1}.unit();
    }
    const double dx = u - 0.5;
    const double dy = v - 0.5;
    if (std::abs(dx) >= std::abs(dy)) return Vector{dx < 0 ? -Slope : Slope, 0, 1}.unit();
    return Vector{0, dy < 0 ? -Slope : Slope, 1}.unit();
}

} // namespace

std::vector<CellLight> reliefLight(int size, std::uint8_t kind, int lightX, int lightY,
                                   int lightZ) {
    const Vector light = Vector{lightX / 10.0, lightY / 10.0, lightZ / 10.0}.unit();
    // Without a light there is no highlight either: the half vector of no
    // light would point at the viewer and light every flat cell.
    const bool dark = light.dot(light) == 0;
    const Vector half = Vector{(light.x + 0) / 2, (light.y + 0) / 2, (light.z + 1) / 2}.unit();
    std::vector<CellLight> cells(static_cast<std::size_t>(size) * size);
    for (int i = 0; i < size; ++i) {
        for (int j = 0; j < size; ++j) {
            const Vector n = normalOf(i, j, size, kind);
            CellLight& cell = cells[static_cast<std::size_t>(i) * size + j];
            cell.diffuse = std::max(0.0, light.dot(n));
            cell.specular = dark ? 0 : std::max(0.0, std::pow(half.dot(n), 100));
        }
    }
    return cells;
}

std::int16_t shadeChannel(int channel, const CellLight& light, int reflection, int ambient) {
    return roundTo<std::int16_t>(channel * light.diffuse + reflection * light.specular + ambient);
}

} // namespace lumiran::mosaic

// Blocks lit as a relief: the block's mean (Mosaic_GradShading) or each
// pixel's own colour (ShadingTexture2).
#include "effects/texture/mosaic/mosaic_walk.h"
#include "effects/texture/mosaic/relief.h"

namespace lumiran {

void Class_Mosaic::ShadingTexture2(std::uint8_t size, std::int16_t left, std::int16_t top,
                                   std::int16_t right, std::int16_t bottom, std::uint8_t kind,
                                   std::int16_t lightX, std::int16_t lightY, std::int16_t lightZ,
                                   std::int16_t reflection, std::int16_t ambient) {
    guarded([&] {
        if (size == 0) throw EffectError::overflow();
        const std::vector<mosaic::CellLight> relief =
            mosaic::reliefLight(size, kind, lightX, lightY, lightZ);
        // Each pixel is shaded once, so the relief simply repeats from the
        // rectangle's top left and a partial block is cut, not folded.
        mapPixels<ResultTail::Clamp>(
            {left, top, right, bottom}, [&](int x, int y, int& r, int& g, int& b) {
                const int i = (y - top) % size;
                const int j = (x - left) % size;
                const mosaic::CellLight& cell = relief[static_cast<std::size_t>(i) * size + j];
                return Rgb16{mosaic::shadeChannel(r, cell, reflection, ambient),
                             mosaic::shadeChannel(g, cell, reflection, ambient),
                             mosaic::shadeChannel(b, cell, reflection, ambient)};
            });
    });
}

void Class_Mosaic::Mosaic_GradShading(std::uint8_t size, std::int16_t left, std::int16_t top,
                                      std::int16_t right, std::int16_t bottom, std::uint8_t kind,
                                      std::int16_t lightX, std::int16_t lightY, std::int16_t lightZ,
                                      std::int16_t reflection, std::int16_t ambient) {
    guarded([&] {
        if (size == 0) throw EffectError::overflow();
        const mosaic::CellRule rule = mosaic::shadingRule(
            mosaic::reliefLight(size, kind, lightX, lightY, lightZ), size, reflection, ambient);
        walkBlocks({left, top, right, bottom}, mosaic::BlockGrid::plain(size, size),
                   [&](const mosaic::Block& block) { paintRule(ImageBits, block, rule); });
    });
}

} // namespace lumiran

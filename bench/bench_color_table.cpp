// The colour table effects at their dialog defaults against the plain copy
// of bench_colour.cpp. A table effect is one lookup per channel, so it is to
// stay within three times the copy; the per-pixel and two-pass effects are
// measured beside them for reference.
#include "bench_support.h"
#include "effects/colour/class_color_table.h"

#include <benchmark/benchmark.h>

namespace {

using namespace lumiran;

constexpr std::int16_t Side = bench::Side;

using Operation = void (*)(Class_ColorTable&);

void BM_ColorTable(benchmark::State& state, Operation operation) {
    bench::runPasses<Class_ColorTable>(state, bench::randomColourPicture(), operation);
}

// Lookup per channel.
void negative(Class_ColorTable& e) {
    e.Negative(0, 255, 0, 0, Side, Side);
}
void posterize(Class_ColorTable& e) {
    e.ColorTableOperation(0, 0, 0, Side, Side, 8);
}
void shadeRangeAdjust(Class_ColorTable& e) {
    e.ShadeRangeAdjust(0, 192, 64, 0, 0, Side, Side, 255);
}
void colorRangeChange(Class_ColorTable& e) {
    e.ColorLength(192, 64, 0, 0, 0, Side, Side);
}
void randomColorTable(Class_ColorTable& e) {
    e.RandomTable(0, 0, 0, Side, Side, 42);
}
void transformationSolarize(Class_ColorTable& e) {
    e.TransformationSlarize(0, 2, 0, 0, 0, Side, Side);
}
void solarization(Class_ColorTable& e) {
    e.Sorarization(128, 0, 0, 0, Side, Side);
}
void levelSlice(Class_ColorTable& e) {
    e.LevelSlice(192, 64, 0, 0, Side, Side);
}
void gamma(Class_ColorTable& e) {
    e.GanmaRevision(255, 200, 0, 0, Side, Side);
}
void medianLevelEmphasize(Class_ColorTable& e) {
    e.MedianLevelEmphasize(0, 42, 0, 0, Side, Side);
}
void anotherColorChange(Class_ColorTable& e) {
    e.ColorViewChange(0, 128, 0, 0, Side, Side);
}
void histogramExpansion(Class_ColorTable& e) {
    e.Histgram_Expansion(102, 0, 0, 0, Side, Side);
}
void phantom(Class_ColorTable& e) {
    e.Phantom(0, 0, Side, Side, 0, 2, 4, 128, 256, 256);
}
void emphasize(Class_ColorTable& e) {
    e.ColorEmphasize(128, 0, 0, 0, Side, Side);
}
void shadeRangeExchange(Class_ColorTable& e) {
    e.ShadeRangeExChange(192, 64, 0, 0, Side, Side, 0, 0, 0);
}

// Per pixel or two passes.
void brightnessNegative(Class_ColorTable& e) {
    e.Negative(7, 255, 0, 0, Side, Side);
}
void kani(Class_ColorTable& e) {
    e.Kani(64, 64, 64, 64, 64, 0, 0, Side, Side, 0);
}
void uni(Class_ColorTable& e) {
    e.Uni(0, 0, Side, Side, 255, 255, 255, 42, 255);
}
void histogramEquation(Class_ColorTable& e) {
    e.Histgram_Equation(1, 0, 0, Side, Side);
}

BENCHMARK_CAPTURE(BM_ColorTable, Negative, negative)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ColorTable, Posterize, posterize)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ColorTable, ShadeRangeAdjust, shadeRangeAdjust)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ColorTable, ColorRangeChange, colorRangeChange)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ColorTable, RandomColorTable, randomColorTable)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ColorTable, TransformationSolarize, transformationSolarize)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ColorTable, Solarization, solarization)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ColorTable, LevelSlice, levelSlice)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ColorTable, RRevision, gamma)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ColorTable, MedianLevelEmphasize, medianLevelEmphasize)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ColorTable, AnotherColorChange, anotherColorChange)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ColorTable, HistgramExpansion, histogramExpansion)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ColorTable, Phantom, phantom)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ColorTable, Emphasize, emphasize)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ColorTable, ShadeRangeExchange, shadeRangeExchange)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ColorTable, NegativeBrightness, brightnessNegative)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ColorTable, Kani, kani)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ColorTable, Uni, uni)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ColorTable, HistgramEquation, histogramEquation)
    ->Unit(benchmark::kMillisecond);

} // namespace

#include "effects/texture/net_mosaic/class_net_mosaic.h"
#include "effects/texture/net_mosaic/net_grid.h"
#include "engine/drawing/drawing.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <exception>
#include <mutex>
#include <span>
#include <stdexcept>
#include <vector>

namespace lumiran {
namespace {

// The rectangle cut to both pictures.
net::Area areaOf(const ProcessRect& rect, const Surface& source, const Surface& target) {
    return {std::max<int>(rect.left, 0), std::max<int>(rect.top, 0),
            std::min({static_cast<int>(rect.right), source.width(), target.width()}),
            std::min({static_cast<int>(rect.bottom), source.height(), target.height()})};
}

bool empty(const net::Area& area) {
    return area.left >= area.right || area.top >= area.bottom;
}

// Cells are told apart on the work picture by colour: cell n is drawn in
// the colour whose 24 bits are n + 1, 0 being no cell. Beyond 2^24 - 1
// cells (pictures near the 16-bit limit with the smallest blocks) numbers
// repeat and two far cells share their mean.
ColourRef cellColour(std::uint32_t number) {
    const std::uint32_t n = (number + 1) & 0xFFFFFFu;
    return RGB(static_cast<int>(n & 0xFF), static_cast<int>((n >> 8) & 0xFF),
               static_cast<int>(n >> 16));
}

std::uint32_t cellNumber(ColourRef colour) {
    return static_cast<std::uint32_t>(colour) & 0xFFFFFFu;
}

struct Sums {
    std::uint64_t red = 0;
    std::uint64_t green = 0;
    std::uint64_t blue = 0;
    std::uint64_t count = 0;
};

// An index that must lie within size: past it the numbering has gone wrong,
// which ends the run with an error rather than reaching outside the sums.
std::size_t checkedIndex(std::size_t index, std::size_t size) {
    if (index >= size) throw std::logic_error("cell number outside its band");
    return index;
}

int meanOf(std::uint64_t sum, std::uint64_t count) {
    return roundTo<int>(static_cast<double>(sum) / static_cast<double>(count));
}

void checkSize(std::int16_t blockSize) {
    // Vertices 0 pixels apart would never reach the far side.
    if (blockSize < 1) throw EffectError::overflow();
}

// The net over the area: its vertices moved at random (type 0) or drawn
// to the source's edges.
net::Net laidNet(const net::Area& area, std::int16_t blockSize, std::int16_t noise,
                 std::uint8_t type, const Surface& source, RandomGenerator& random) {
    net::Net net(area, blockSize);
    if (type == 0) {
        net.scatter(noise, random);
    } else {
        net.snapToEdges(source, noise);
    }
    return net;
}

// The rows of the picture a row of cells reaches, both inclusive.
struct RowReach {
    int first = 0;
    int last = -1;
};

std::vector<RowReach> cellRowReaches(const net::Net& net) {
    std::vector<RowReach> reaches(static_cast<std::size_t>(net.cellRows()));
    const auto widen = [](RowReach& reach, std::span<const CanvasPoint> side) {
        for (const CanvasPoint& p : side) {
            reach.first = std::min(reach.first, p.y);
            reach.last = std::max(reach.last, p.y);
        }
    };
    for (int b = 0; b < net.cellRows(); ++b) {
        RowReach& reach = reaches[static_cast<std::size_t>(b)];
        reach = {net.across(0, b).front().y, net.across(0, b).front().y};
        for (int a = 0; a < net.cellColumns(); ++a) {
            widen(reach, net.across(a, b));
            widen(reach, net.across(a, b + 1));
        }
        for (int a = 0; a < net.vertexColumns(); ++a)
            widen(reach, net.down(a, b));
    }
    return reaches;
}

// The rows of the picture the sides of each row of vertices reach: the
// level sides of row b and the upright ones from it to row b + 1.
std::vector<RowReach> vertexRowReaches(const net::Net& net) {
    std::vector<RowReach> reaches(static_cast<std::size_t>(net.vertexRows()));
    for (int b = 0; b < net.vertexRows(); ++b) {
        RowReach& reach = reaches[static_cast<std::size_t>(b)];
        const int y = net.across(0, b).front().y;
        reach = {y, y};
        const auto widen = [&](std::span<const CanvasPoint> side) {
            for (const CanvasPoint& p : side) {
                reach.first = std::min(reach.first, p.y);
                reach.last = std::max(reach.last, p.y);
            }
        };
        for (int a = 0; a < net.cellColumns(); ++a)
            widen(net.across(a, b));
        if (b < net.cellRows()) {
            for (int a = 0; a < net.vertexColumns(); ++a)
                widen(net.down(a, b));
        }
    }
    return reaches;
}

} // namespace

// How count units of work (rows of cells, rows of pixels) are shared out:
// bands of unitsPerBand, at least the frame's smallest band of pixels and
// about perThread a thread, so that every core keeps busy to the end.
Class_NetMosaic::Bands Class_NetMosaic::bandsOf(int count, long long pixelsPerUnit, int perThread) {
    const RowThreading& threading = context().threading;
    if (count <= 0) return {1, 1, 0};
    const long long least = std::max<long long>(
        1, (std::max(threading.bandPixels, 1) + std::max<long long>(pixelsPerUnit, 1) - 1) /
               std::max<long long>(pixelsPerUnit, 1));
    const int threads = std::max(threading.threads, 1);
    const long long bandsWanted = static_cast<long long>(threads) * std::max(perThread, 1);
    const long long even = (count + bandsWanted - 1) / bandsWanted;
    const auto unitsPerBand = static_cast<int>(std::min<long long>(count, std::max(least, even)));
    const int bandCount = (count + unitsPerBand - 1) / unitsPerBand;
    return {std::min(threads, bandCount), unitsPerBand, bandCount};
}

template <typename Work>
bool Class_NetMosaic::inBands(const Bands& bands, Work&& work) {
    if (bands.workers <= 1) {
        for (int k = 0; k < bands.count; ++k) {
            const int units = work(0, k);
            for (int i = 0; i < units; ++i) {
                if (!finishRow()) return false;
            }
        }
        return true;
    }
    std::atomic<int> next{0};
    std::atomic<bool> stop{false};
    std::mutex progress;
    std::exception_ptr failure;
    int failedBand = bands.count;
    context().workers().run(bands.workers, [&](int worker) {
        for (int k = next.fetch_add(1); k < bands.count && !stop.load(); k = next.fetch_add(1)) {
            try {
                const int units = work(worker, k);
                const std::scoped_lock lock(progress);
                for (int i = 0; i < units; ++i) {
                    if (!finishRow()) {
                        stop = true;
                        break;
                    }
                }
            } catch (...) {
                const std::scoped_lock lock(progress);
                if (k < failedBand) {
                    failedBand = k;
                    failure = std::current_exception();
                }
                stop = true;
            }
        }
    });
    if (failure) std::rethrow_exception(failure);
    return !context().cancelled();
}

template <typename PrepareRow>
std::optional<net::Net>
Class_NetMosaic::layAlongside(const net::Area& area, std::int16_t blockSize, std::int16_t noise,
                              std::uint8_t type, const Surface& source, PrepareRow&& prepareRow) {
    std::optional<net::Net> net;
    const RowThreading& threading = context().threading;
    const int threads = std::max(threading.threads, 1);
    const long long pixels =
        static_cast<long long>(area.right - area.left) * (area.bottom - area.top);
    if (threads <= 1 || pixels < 2LL * std::max(threading.bandPixels, 1)) {
        net.emplace(laidNet(area, blockSize, noise, type, source, context().random));
        for (int y = area.top; y < area.bottom; ++y)
            prepareRow(y);
        return net;
    }
    constexpr int Chunk = 16;
    std::atomic<int> next{area.top};
    std::exception_ptr failure;
    context().workers().run(threads, [&](int worker) {
        if (worker == 0) {
            try {
                net.emplace(laidNet(area, blockSize, noise, type, source, context().random));
            } catch (...) {
                failure = std::current_exception();
            }
        }
        for (int first = next.fetch_add(Chunk); first < area.bottom;
             first = next.fetch_add(Chunk)) {
            for (int y = first; y < std::min(area.bottom, first + Chunk); ++y)
                prepareRow(y);
        }
    });
    if (failure) std::rethrow_exception(failure);
    return net;
}

void Class_NetMosaic::Mosaic_Net(const Surface& source, Surface& target, std::int16_t left,
                                 std::int16_t top, std::int16_t right, std::int16_t bottom,
                                 std::int16_t blockSize, std::int16_t noise, std::uint8_t type) {
    guarded([&] {
        checkSize(blockSize);
        const net::Area area = areaOf({left, top, right, bottom}, source, target);
        if (empty(area)) return;
        // Every cell filled on the work picture in its own colour. The work
        // picture is the target itself (its colour bytes cleared, the spare
        // byte kept) unless the target is also the source.
        Surface separate;
        if (&source == &target) separate = Surface(target.width(), target.height());
        Surface& cells = &source == &target ? separate : target;
        const int width = area.right - area.left;
        const auto areaRow = [&](Surface& picture, int y) {
            return picture.row(y).subspan(static_cast<std::size_t>(area.left),
                                          static_cast<std::size_t>(width));
        };
        const std::optional<Pixel> fill = &source == &target ? std::nullopt : rectangleFill_;
        const std::optional<net::Net> laid =
            layAlongside(area, blockSize, noise, type, source, [&](int y) {
                const auto row = areaRow(cells, y);
                if (fill) {
                    std::ranges::fill(row, *fill & 0xFF000000u);
                } else {
                    for (Pixel& p : row)
                        p &= 0xFF000000u;
                }
            });
        const net::Net& net = *laid;
        SetProgressRange(0, net.cellRows() + (area.bottom - area.top));

        // Bands of rows of the picture, each painting every cell that
        // reaches into it, in the cells' order and clipped to its rows: a
        // pixel where cells touch takes the last one's colour, as when the
        // cells are painted over the whole picture one after the other.
        const std::vector<RowReach> reaches = cellRowReaches(net);
        const int cellRows = net.cellRows();
        const int size = blockSize;
        // Few bands: the cells across a band's border are visited by both.
        const Bands bands = bandsOf(cellRows, static_cast<long long>(size) * width, 2);
        // Where the net's row b of vertices lay before it was moved.
        const auto rowOfCellRow = [&](int b) {
            return area.top + static_cast<int>(std::min<long long>(static_cast<long long>(b) * size,
                                                                   area.bottom - area.top));
        };
        struct Painter {
            explicit Painter(Surface& picture) : canvas(picture) {}
            Canvas canvas;
            net::Polyline outline;
        };
        std::vector<Painter> painters;
        painters.reserve(static_cast<std::size_t>(bands.workers));
        for (int w = 0; w < bands.workers; ++w)
            painters.emplace_back(cells);
        const bool painted = inBands(bands, [&](int worker, int k) {
            const int firstCellRow = k * bands.unitsPerBand;
            const int endCellRow = std::min(cellRows, firstCellRow + bands.unitsPerBand);
            const int bandTop = rowOfCellRow(firstCellRow);
            const int bandBottom = endCellRow == cellRows ? area.bottom : rowOfCellRow(endCellRow);
            Painter& painter = painters[static_cast<std::size_t>(worker)];
            Canvas& canvas = painter.canvas;
            canvas.setClip(area.left, bandTop, area.right, bandBottom);
            canvas.FillStyle = BrushStyle::Solid;
            for (int b = 0; b < cellRows; ++b) {
                const RowReach& reach = reaches[static_cast<std::size_t>(b)];
                if (reach.last < bandTop || reach.first >= bandBottom) continue;
                for (int a = 0; a < net.cellColumns(); ++a) {
                    net.cellOutline(a, b, painter.outline);
                    const auto [low, high] =
                        std::ranges::minmax(painter.outline, {}, &CanvasPoint::y);
                    if (high.y < bandTop || low.y >= bandBottom) continue;
                    const ColourRef colour =
                        cellColour(static_cast<std::uint32_t>(b * net.cellColumns() + a));
                    canvas.FillColor = colour;
                    canvas.Polygon(painter.outline, colour);
                }
            }
            return endCellRow - firstCellRow;
        });
        if (!painted) return;

        // A pixel that no cell reached (where bent sides nearly touch) joins
        // the cell on its left, or above it in the first column. The cell
        // numbers replace the colours on the work picture.
        const auto cellCount = static_cast<std::size_t>(net.cellRows()) * net.cellColumns();
        std::vector<Sums> sums(std::min<std::size_t>(cellCount, 0xFFFFFFu) + 1);
        // Row y of the numbering, its sums into sums[0] for no cell and
        // sums[n - low + 1] for cell number n.
        const auto numberRow = [&](int y, bool fromAbove, std::uint32_t low, std::span<Sums> into) {
            const auto numbers = areaRow(cells, y);
            const auto above = fromAbove ? areaRow(cells, y - 1) : std::span<Pixel>{};
            const auto colours = source.row(y).subspan(static_cast<std::size_t>(area.left),
                                                       static_cast<std::size_t>(width));
            // Pixels of a cell come in runs along the row: each run is
            // summed here and added to its cell's sums once.
            std::uint32_t runNumber = 0;
            std::uint32_t red = 0, green = 0, blue = 0, count = 0;
            const auto addRun = [&] {
                if (count == 0) return;
                Sums& s = into[runNumber == 0 ? 0 : checkedIndex(runNumber - low + 1, into.size())];
                s.red += red;
                s.green += green;
                s.blue += blue;
                s.count += count;
            };
            for (std::size_t i = 0; i < numbers.size(); ++i) {
                std::uint32_t n = cellNumber(colourRefOf(numbers[i]));
                if (n == 0 && i > 0) n = numbers[i - 1] & 0xFFFFFFu;
                if (n == 0 && !above.empty()) n = above[i] & 0xFFFFFFu;
                numbers[i] = (numbers[i] & 0xFF000000u) | n;
                if (n != runNumber) {
                    addRun();
                    runNumber = n;
                    red = green = blue = count = 0;
                }
                const Pixel c = colours[i];
                red += static_cast<std::uint32_t>(redOf(c));
                green += static_cast<std::uint32_t>(greenOf(c));
                blue += static_cast<std::uint32_t>(blueOf(c));
                ++count;
            }
            addRun();
        };
        // By bands of rows: only an unreached first pixel of a row takes a
        // number from the row above, so bands whose first rows begin with a
        // cell number their rows alone; otherwise everything goes in order.
        // A band's pixels belong to the cells painted into its rows, so each
        // band sums into the range of those cells' numbers.
        const int height = area.bottom - area.top;
        const Bands numberBands = bandsOf(height, width, 4);
        const auto bandTopOf = [&](int k) { return area.top + k * numberBands.unitsPerBand; };
        bool alone = numberBands.workers > 1 && cellCount < 0xFFFFFFu;
        for (int k = 1; alone && k < numberBands.count; ++k)
            alone = cellNumber(colourRefOf(areaRow(cells, bandTopOf(k)).front())) != 0;
        if (!alone) {
            for (int y = area.top; y < area.bottom; ++y)
                numberRow(y, y > area.top, 1, sums);
        } else {
            struct BandSums {
                std::uint32_t low = 1;
                std::vector<Sums> sums;
            };
            std::vector<BandSums> bandSums(static_cast<std::size_t>(numberBands.count));
            const auto columns = static_cast<std::uint32_t>(net.cellColumns());
            inBands(numberBands, [&](int, int k) {
                const int first = bandTopOf(k);
                const int end = std::min(area.bottom, first + numberBands.unitsPerBand);
                int lowRow = cellRows;
                int highRow = 0;
                for (int b = 0; b < cellRows; ++b) {
                    const RowReach& reach = reaches[static_cast<std::size_t>(b)];
                    if (reach.last < first || reach.first >= end) continue;
                    lowRow = std::min(lowRow, b);
                    highRow = std::max(highRow, b);
                }
                BandSums& band = bandSums[static_cast<std::size_t>(k)];
                band.low = static_cast<std::uint32_t>(std::min(lowRow, highRow)) * columns + 1;
                band.sums.assign(static_cast<std::uint32_t>(highRow + 1) * columns - band.low + 2,
                                 Sums{});
                for (int y = first; y < end; ++y)
                    numberRow(y, y > first, band.low, band.sums);
                return 0;
            });
            if (context().cancelled()) return;
            for (const BandSums& band : bandSums) {
                for (std::size_t j = 0; j < band.sums.size(); ++j) {
                    Sums& s = sums[j == 0 ? 0 : band.low + j - 1];
                    s.red += band.sums[j].red;
                    s.green += band.sums[j].green;
                    s.blue += band.sums[j].blue;
                    s.count += band.sums[j].count;
                }
            }
        }
        std::vector<Pixel> means(sums.size());
        for (std::size_t n = 0; n < sums.size(); ++n) {
            const Sums& s = sums[n];
            if (s.count != 0)
                means[n] = colourBitsOf(
                    RGB(meanOf(s.red, s.count), meanOf(s.green, s.count), meanOf(s.blue, s.count)));
        }
        const Bands rowBands = bandsOf(height, width, 4);
        inBands(rowBands, [&](int, int k) {
            const int first = area.top + k * rowBands.unitsPerBand;
            const int end = std::min(area.bottom, first + rowBands.unitsPerBand);
            for (int y = first; y < end; ++y) {
                const auto numbers = areaRow(cells, y);
                const auto out = areaRow(target, y);
                for (std::size_t i = 0; i < out.size(); ++i)
                    out[i] = (out[i] & 0xFF000000u) | means[numbers[i] & 0xFFFFFFu];
            }
            return end - first;
        });
    });
}

void Class_NetMosaic::Net_Line(const Surface& source, Surface& target, std::int16_t left,
                               std::int16_t top, std::int16_t right, std::int16_t bottom,
                               std::int16_t blockSize, std::int16_t noise, std::uint8_t type,
                               std::int16_t red, std::int16_t green, std::int16_t blue) {
    guarded([&] {
        checkSize(blockSize);
        const net::Area area = areaOf({left, top, right, bottom}, source, target);
        if (empty(area)) return;
        const int width = area.right - area.left;
        const std::optional<net::Net> laid =
            layAlongside(area, blockSize, noise, type, source, [&](int y) {
                if (&source == &target) return;
                const auto from = source.row(y).subspan(static_cast<std::size_t>(area.left),
                                                        static_cast<std::size_t>(width));
                std::ranges::copy(from, target.row(y).begin() + area.left);
            });
        const net::Net& net = *laid;
        const ColourRef colour = RGB(red, green, blue);
        const int vertexRows = net.vertexRows();
        SetProgressRange(0, vertexRows);
        // Every side is one colour drawn over the copy, so a pixel's result
        // does not depend on the order of the sides: bands of rows each draw
        // every side that reaches into them, clipped to their rows.
        const std::vector<RowReach> reaches = vertexRowReaches(net);
        const int size = blockSize;
        const Bands bands = bandsOf(vertexRows, static_cast<long long>(size) * width, 2);
        const auto rowOfVertexRow = [&](int b) {
            return area.top + static_cast<int>(std::min<long long>(static_cast<long long>(b) * size,
                                                                   area.bottom - area.top));
        };
        std::vector<Canvas> canvases;
        canvases.reserve(static_cast<std::size_t>(bands.workers));
        for (int w = 0; w < bands.workers; ++w)
            canvases.emplace_back(target);
        inBands(bands, [&](int worker, int k) {
            const int firstRow = k * bands.unitsPerBand;
            const int endRow = std::min(vertexRows, firstRow + bands.unitsPerBand);
            const int bandTop = rowOfVertexRow(firstRow);
            const int bandBottom = endRow == vertexRows ? area.bottom : rowOfVertexRow(endRow);
            Canvas& canvas = canvases[static_cast<std::size_t>(worker)];
            canvas.setClip(area.left, bandTop, area.right, bandBottom);
            const auto draw = [&](std::span<const CanvasPoint> side) {
                const auto [low, high] = std::ranges::minmax(side, {}, &CanvasPoint::y);
                if (high.y < bandTop || low.y >= bandBottom) return;
                for (std::size_t i = 0; i + 1 < side.size(); ++i)
                    canvas.Line(side[i].x, side[i].y, side[i + 1].x, side[i + 1].y, colour);
                // A line leaves out its end point; the side's last one is
                // drawn here so the net's far corners are closed too.
                canvas.Line(side.back().x, side.back().y, side.back().x, side.back().y, colour,
                            LineKind::BF);
            };
            for (int b = 0; b < vertexRows; ++b) {
                const RowReach& reach = reaches[static_cast<std::size_t>(b)];
                if (reach.last < bandTop || reach.first >= bandBottom) continue;
                for (int a = 0; a < net.cellColumns(); ++a)
                    draw(net.across(a, b));
                if (b < net.cellRows()) {
                    for (int a = 0; a < net.vertexColumns(); ++a)
                        draw(net.down(a, b));
                }
            }
            return endRow - firstRow;
        });
    });
}

} // namespace lumiran

#include "effects/texture/net_mosaic/cell_paint.h"
#include "effects/texture/net_mosaic/class_net_mosaic.h"
#include "effects/texture/net_mosaic/net_grid.h"
#include "engine/drawing/drawing.h"
#include "engine/picture_memory.h"
#include "engine/picture_memory_prepare.h"
#include "engine/shared_rows.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <exception>
#include <mutex>
#include <span>
#include <thread>
#include <utility>
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

// Cell n is number n + 1 in the colour bytes of the work picture, 0 being
// no cell. Beyond 2^24 - 1 cells (pictures near the 16-bit limit with the
// smallest blocks) numbers repeat and two far cells share their mean.
constexpr Pixel NumberBytes = 0xFFFFFFu;

struct Sums {
    std::uint64_t red = 0;
    std::uint64_t green = 0;
    std::uint64_t blue = 0;
    std::uint64_t count = 0;
};

// An index that must lie within size: past it the numbering has gone wrong,
// which ends the run with the run-time error rather than reaching outside
// the sums.
std::size_t checkedIndex(std::size_t index, std::size_t size) {
    if (index >= size) throw EffectError::subscriptOutOfRange();
    return index;
}

// Cells whose means a unit of work makes.
constexpr std::size_t MeansPerUnit = 4096;

int meanOf(std::uint64_t sum, std::uint64_t count) {
    return roundTo<int>(static_cast<double>(sum) / static_cast<double>(count));
}

void checkSize(std::int16_t blockSize) {
    // Vertices 0 pixels apart would never reach the far side.
    if (blockSize < 1) throw EffectError::overflow();
}

// Lays the net over the area: its vertices moved at random (type 0) or
// drawn to the source's edges.
void lay(net::Net& net, std::int16_t noise, std::uint8_t type, const Surface& source,
         RandomGenerator& random) {
    if (type == 0) {
        net.scatter(noise, random);
    } else {
        net.snapToEdges(source, noise);
    }
}

using net::RowReach;

// For bands 0 .. count - 1 in order down the picture, band k ending above
// row endOf(k): how many rows of vertices (from the first) have sides that
// can reach into it or above, within the spread. A band is drawn once
// those are laid.
template <typename EndOf>
std::vector<int> rowsReaching(const net::Net& net, int spread, int count, EndOf&& endOf) {
    std::vector<int> rows(static_cast<std::size_t>(std::max(count, 0)));
    for (int k = 0, b = 0; k < count; ++k) {
        while (b < net.vertexRows() && net.gridRow(b) - spread < endOf(k))
            ++b;
        rows[static_cast<std::size_t>(k)] = b;
    }
    return rows;
}

// Bands of cell rows a thread: small enough that the painting follows the
// laying closely, large enough that the cells across a band's border,
// visited by both bands, stay few.
constexpr int CellBandsPerThread = 8;

// Keeps the memory of the sides faulted in a little ahead of the laying, a
// part at a time, on the second worker between the bands it draws: first
// touches of those pages would otherwise stall the laying thread.
class FaultingAhead {
  public:
    FaultingAhead(const net::Net& net, bool bent, int noise)
        : memory_(net.sideMemory(bent, noise)), rows_(std::max(net.vertexRows(), 1)) {}

    // Before each look at the next band: worker 1 faults a part when the
    // laying comes near it or the band is not ready; a worker that faults
    // nothing and has no band yields.
    void pace(int worker, bool ready, const std::atomic<int>& laid) {
        if (worker == 1 && faulted_ < Parts) {
            const long long layingPart =
                static_cast<long long>(laid.load(std::memory_order_relaxed)) * Parts / rows_;
            if (!ready || faulted_ < layingPart + PartsAhead) {
                faultPart();
                return;
            }
        }
        if (!ready) std::this_thread::yield();
    }

  private:
    static constexpr int Parts = 64;
    static constexpr int PartsAhead = 4;
    void faultPart() {
        for (const std::span<const std::byte> memory : memory_) {
            const std::size_t part = (memory.size() + Parts - 1) / Parts;
            const std::size_t from = std::min(memory.size(), faulted_ * part);
            faultInPictureMemory(memory.subspan(from, std::min(part, memory.size() - from)));
        }
        ++faulted_;
    }
    std::array<std::span<const std::byte>, 4> memory_;
    int rows_;
    int faulted_ = 0;
};

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

template <typename Work, typename Start, typename Ready, typename Pace>
bool Class_NetMosaic::inBands(const Bands& bands, Work&& work, Start&& start, Ready&& ready,
                              Pace&& pace) {
    if (bands.workers <= 1) {
        start(0);
        for (int k = 0; k < bands.count; ++k) {
            for (bool isReady = false; !isReady;) {
                isReady = ready(k);
                pace(0, isReady);
            }
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
    const auto fail = [&](int k) {
        const std::scoped_lock lock(progress);
        if (k < failedBand) {
            failedBand = k;
            failure = std::current_exception();
        }
        stop = true;
    };
    context().workers().run(bands.workers, [&](int worker) {
        try {
            start(worker);
        } catch (...) {
            fail(-1);
        }
        for (;;) {
            // A band is taken only once it is ready, so that no worker
            // holds one that another could have drawn meanwhile.
            int k = next.load();
            if (k >= bands.count || stop.load()) break;
            const bool isReady = ready(k);
            pace(worker, isReady);
            if (!isReady) continue;
            if (!next.compare_exchange_weak(k, k + 1)) continue;
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
                fail(k);
            }
        }
    });
    if (failure) std::rethrow_exception(failure);
    return !context().cancelled();
}

void Class_NetMosaic::Mosaic_Net(const Surface& source, Surface& target, std::int16_t left,
                                 std::int16_t top, std::int16_t right, std::int16_t bottom,
                                 std::int16_t blockSize, std::int16_t noise, std::uint8_t type) {
    guarded([&] {
        checkSize(blockSize);
        const net::Area area = areaOf({left, top, right, bottom}, source, target);
        if (empty(area)) return;
        const int width = area.right - area.left;
        const auto areaRow = [&](auto& picture, int y) {
            return picture.row(y).subspan(static_cast<std::size_t>(area.left),
                                          static_cast<std::size_t>(width));
        };
        // The result takes the cells' numbers in its colour bytes, then their
        // means. Its spare bytes are kept, but where the target is the result
        // and is taken as filled: there they are the fill's.
        Surface& result = result_ != nullptr && result_->sameSize(target) ? *result_ : target;
        const std::optional<Pixel> resultFill =
            &result == &target && &source != &target ? rectangleFill_ : std::nullopt;
        const auto spareOf = [&](Pixel p) {
            return resultFill ? *resultFill & 0xFF000000u : p & 0xFF000000u;
        };
        const bool bent = type == 0;
        net::Net net(area, blockSize);
        net.reserveSidesFor(bent, noise);
        const int cellRows = net.cellRows();
        const auto cellCount = static_cast<std::size_t>(net.cellRows()) * net.cellColumns();
        // The cells' sums, a number each.
        std::vector<Sums, PictureAllocator<Sums>> sums;
        const std::size_t sumCount = std::min<std::size_t>(cellCount, NumberBytes) + 1;
        SetProgressRange(0, cellRows + (area.bottom - area.top));

        // A pixel that no cell reached (where bent sides nearly touch) joins
        // the cell on its left, or above it in the first column; above is
        // read only then. A row of the numbering, its sums into into[0] for
        // no cell and into[n - low + 1] for cell number n.
        const auto numberRow = [&](std::span<Pixel> numbers, std::span<const Pixel> above,
                                   std::span<const Pixel> colours, std::uint32_t low,
                                   std::span<Sums> into) {
            // Pixels of a cell come in runs along the row: each run is
            // summed here, its channels in lanes of one word (blue from bit
            // 0, green from 21, red from 42: runs of at most Chunk pixels do
            // not carry between them), and added to its cell's sums once.
            constexpr std::size_t Chunk = 8192;
            constexpr std::uint64_t Lane = (1u << 21) - 1;
            std::uint32_t runNumber = 0;
            std::size_t runStart = 0;
            std::uint64_t packed = 0;
            const auto addRun = [&](std::size_t end) {
                if (end == runStart) return;
                Sums& s = into[runNumber == 0 ? 0 : checkedIndex(runNumber - low + 1, into.size())];
                s.blue += packed & Lane;
                s.green += (packed >> 21) & Lane;
                s.red += packed >> 42;
                s.count += end - runStart;
                runStart = end;
                packed = 0;
            };
            for (std::size_t chunk = 0; chunk < numbers.size(); chunk += Chunk) {
                const std::size_t end = std::min(numbers.size(), chunk + Chunk);
                for (std::size_t i = chunk; i < end; ++i) {
                    std::uint32_t n = numbers[i] & NumberBytes;
                    if (n == 0) [[unlikely]] {
                        if (i > 0) n = numbers[i - 1] & NumberBytes;
                        if (n == 0 && !above.empty()) n = above[i] & NumberBytes;
                        numbers[i] |= n;
                    }
                    if (n != runNumber) {
                        addRun(i);
                        runNumber = n;
                    }
                    const std::uint64_t c = colours[i];
                    packed += (c & 0xFF) | ((c & 0xFF00) << 13) | ((c & 0xFF0000) << 26);
                }
                addRun(end);
            }
        };

        // Bands of rows of the picture, each painting every cell that
        // reaches into it, clipped to its rows: a pixel where cells touch
        // takes the last one's number, as when the cells are painted over the
        // whole picture one after the other.
        const int size = blockSize;
        const Bands bands =
            bandsOf(cellRows, static_cast<long long>(size) * width, CellBandsPerThread);
        // Where the net's row b of vertices lay before it was moved.
        const auto rowOfCellRow = [&](int b) {
            return area.top + static_cast<int>(std::min<long long>(static_cast<long long>(b) * size,
                                                                   area.bottom - area.top));
        };
        const auto bandOf = [&](int k) {
            const int firstCellRow = k * bands.unitsPerBand;
            const int endCellRow = std::min(cellRows, firstCellRow + bands.unitsPerBand);
            return net::Area{area.left, rowOfCellRow(firstCellRow), area.right,
                             endCellRow == cellRows ? area.bottom : rowOfCellRow(endCellRow)};
        };
        const auto cellRowsOf = [&](int k) {
            return std::min(cellRows, (k + 1) * bands.unitsPerBand) - k * bands.unitsPerBand;
        };

        // Where the numbers lie for the means: the result, or for numbers
        // that repeat a picture of their own.
        Surface separate;
        Surface* numbers = &result;
        if (cellCount >= NumberBytes) {
            // Pictures near the size limit with the smallest blocks: the
            // canvas paints every cell in its number on a work picture (the
            // target, its colour bytes cleared, unless it is the source),
            // over the whole net, and the numbers are summed in order.
            if (&source == &target) separate = Surface(target.width(), target.height());
            Surface& cells = &source == &target ? separate : target;
            const std::optional<Pixel> fill = &source == &target ? std::nullopt : rectangleFill_;
            numbers = &cells;
            lay(net, noise, type, source, context().random);
            sums.assign(sumCount, Sums{});
            forEachRowShared(context(), area.top, area.bottom, width, [&](int y) {
                for (Pixel& p : areaRow(cells, y))
                    p = fill ? *fill & 0xFF000000u : p & 0xFF000000u;
            });
            const std::vector<RowReach> reaches = net::reachesOf(net).cells;
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
                const net::Area band = bandOf(k);
                Painter& painter = painters[static_cast<std::size_t>(worker)];
                Canvas& canvas = painter.canvas;
                canvas.setClip(band.left, band.top, band.right, band.bottom);
                canvas.FillStyle = BrushStyle::Solid;
                for (int b = 0; b < cellRows; ++b) {
                    const RowReach& reach = reaches[static_cast<std::size_t>(b)];
                    if (reach.last < band.top || reach.first >= band.bottom) continue;
                    for (int a = 0; a < net.cellColumns(); ++a) {
                        net.cellOutline(a, b, painter.outline);
                        // The colour whose pixel bits are the number.
                        const ColourRef colour =
                            colourRefOf(net::cellLabel(net, a, b) & NumberBytes);
                        canvas.FillColor = colour;
                        canvas.Polygon(painter.outline, colour);
                    }
                }
                return cellRowsOf(k);
            });
            if (!painted) return;
            for (int y = area.top; y < area.bottom; ++y) {
                numberRow(areaRow(cells, y),
                          y > area.top ? areaRow(cells, y - 1) : std::span<Pixel>{},
                          areaRow(source, y), 1, sums);
            }
        } else {
            // Laying the net draws from the one generator in order, so worker
            // 0 lays it while the others paint the bands it has passed: a band
            // is ready once every row of vertices that can reach it and the
            // row after are laid. Each band paints into rows of its own and
            // numbers them as they become final, summing into the range of
            // the numbers of the cells painted into them, then adds that to
            // the whole. A numbered row's colours are no longer needed, so
            // its numbers go into the result, even where the result is the
            // source: no picture of numbers. (Type 1 reads the source only
            // while moving the vertices, before any row is laid.)
            const int vertexRows = net.vertexRows();
            const int spread = net.sideSpread(bent, noise);
            const std::vector<int> rowsNeeded =
                rowsReaching(net, spread, bands.count, [&](int k) { return bandOf(k).bottom; });
            std::atomic<int> laid{0};
            net.announceRowsTo(laid);
            std::mutex adding;
            // Whether band k's numbers are in the result: a band whose first
            // pixel no cell reached takes its number from the row above.
            std::vector<std::atomic<bool>> numbered(static_cast<std::size_t>(bands.count));
            struct Worker {
                net::CellPainter painter{net::CellPainter::Rows{}, net::Area{}};
                std::vector<Pixel, PictureAllocator<Pixel>> rows;
                std::vector<Sums, PictureAllocator<Sums>> sums;
            };
            std::vector<Worker> workers(static_cast<std::size_t>(bands.workers));
            const auto paintBand = [&](int worker, int k) {
                // Set however the band ends, so that no band below waits on it.
                struct Numbered {
                    std::atomic<bool>& flag;
                    ~Numbered() { flag.store(true, std::memory_order_release); }
                } announce{numbered[static_cast<std::size_t>(k)]};
                const net::Area band = bandOf(k);
                Worker& own = workers[static_cast<std::size_t>(worker)];
                own.rows.resize(static_cast<std::size_t>(band.bottom - band.top) * width);
                std::ranges::fill(own.rows, Pixel{0});
                const auto ownRow = [&](int y) {
                    return std::span(own.rows).subspan(static_cast<std::size_t>(y - band.top) *
                                                           width,
                                                       static_cast<std::size_t>(width));
                };
                const std::vector<RowReach> sideReaches =
                    net::sideReachesOf(net, rowsNeeded[static_cast<std::size_t>(k)] + 1);
                // The numbers of the cells painted into the band's rows.
                int lowRow = cellRows;
                int highRow = 0;
                for (std::size_t b = 0; b + 1 < sideReaches.size(); ++b) {
                    const RowReach& upper = sideReaches[b];
                    const RowReach& lower = sideReaches[b + 1];
                    if (std::max(upper.last, lower.last) < band.top ||
                        std::min(upper.first, lower.first) >= band.bottom)
                        continue;
                    lowRow = std::min(lowRow, static_cast<int>(b));
                    highRow = std::max(highRow, static_cast<int>(b));
                }
                const auto columns = static_cast<std::uint32_t>(net.cellColumns());
                const std::uint32_t low =
                    static_cast<std::uint32_t>(std::min(lowRow, highRow)) * columns + 1;
                const std::uint32_t count =
                    static_cast<std::uint32_t>(highRow + 1) * columns - low + 2;
                // A large band's sums in a huge page of picture memory: on
                // the heap a 4K band's fault in a small page every 128 cells.
                // A small picture's stay on the heap, where a huge page to
                // clear would cost more than the whole run.
                constexpr std::size_t HugePageSums = HugePageBytes / sizeof(Sums);
                if (count >= HugePageSums / 8)
                    own.sums.reserve(std::max<std::size_t>(count, HugePageSums));
                if (own.sums.size() < count) own.sums.resize(count);
                const std::span<Sums> into(own.sums.data(), count);
                std::ranges::fill(into, Sums{});
                own.painter.setClip(
                    {own.rows.data(), static_cast<std::size_t>(width), area.left, band.top}, band);
                int next = band.top;
                own.painter.paint(net, sideReaches, [&](int end) {
                    for (end = std::min(end, band.bottom); next < end; ++next) {
                        const auto row = ownRow(next);
                        std::span<const Pixel> above;
                        if (next > band.top) {
                            above = ownRow(next - 1);
                        } else if (next > area.top && (row.front() & NumberBytes) == 0) {
                            while (!numbered[static_cast<std::size_t>(k - 1)].load(
                                std::memory_order_acquire))
                                std::this_thread::yield();
                            above = areaRow(result, next - 1);
                        }
                        numberRow(row, above, areaRow(source, next), low, into);
                        const auto out = areaRow(result, next);
                        for (std::size_t i = 0; i < out.size(); ++i)
                            out[i] = spareOf(out[i]) | (row[i] & NumberBytes);
                    }
                });
                const std::scoped_lock lock(adding);
                // Made by the first band done, off the laying thread.
                if (sums.empty()) sums.assign(sumCount, Sums{});
                for (std::size_t j = 0; j < into.size(); ++j) {
                    Sums& s = sums[j == 0 ? 0 : low + j - 1];
                    s.red += into[j].red;
                    s.green += into[j].green;
                    s.blue += into[j].blue;
                    s.count += into[j].count;
                }
                return cellRowsOf(k);
            };
            FaultingAhead faulting(net, bent, noise);
            const bool painted = inBands(
                bands, paintBand,
                [&](int worker) {
                    if (worker == 0) lay(net, noise, type, source, context().random);
                },
                [&](int k) {
                    return laid.load(std::memory_order_acquire) >=
                           std::min(vertexRows, rowsNeeded[static_cast<std::size_t>(k)] + 1);
                },
                [&](int worker, bool ready) { faulting.pace(worker, ready, laid); });
            if (!painted) return;
            // A side beyond its spread would have been missed by the bands
            // painted before it was laid; with the source's colours gone from
            // the result that cannot be mended, so the run ends with the
            // run-time error and the picture is restored.
            if (!net.withinSpread(spread)) throw EffectError::subscriptOutOfRange();
        }

        // The means on every thread too: a 4K net has a quarter of a million
        // cells, each three divisions.
        std::vector<Pixel, PictureAllocator<Pixel>> means(sums.size());
        const auto meanUnits = static_cast<int>((sums.size() + MeansPerUnit - 1) / MeansPerUnit);
        const Bands meanBands = bandsOf(meanUnits, static_cast<long long>(MeansPerUnit) * 8, 1);
        inBands(meanBands, [&](int, int k) {
            const std::size_t first =
                static_cast<std::size_t>(k) * meanBands.unitsPerBand * MeansPerUnit;
            const std::size_t end =
                std::min(sums.size(), first + meanBands.unitsPerBand * MeansPerUnit);
            for (std::size_t n = first; n < end; ++n) {
                const Sums& s = sums[n];
                means[n] = s.count == 0
                               ? 0
                               : colourBitsOf(RGB(meanOf(s.red, s.count), meanOf(s.green, s.count),
                                                  meanOf(s.blue, s.count)));
            }
            return 0;
        });
        const int height = area.bottom - area.top;
        const Bands rowBands = bandsOf(height, width, 4);
        inBands(rowBands, [&](int, int k) {
            const int first = area.top + k * rowBands.unitsPerBand;
            const int end = std::min(area.bottom, first + rowBands.unitsPerBand);
            for (int y = first; y < end; ++y) {
                const auto from = areaRow(*numbers, y);
                const auto out = areaRow(result, y);
                for (std::size_t i = 0; i < out.size(); ++i)
                    out[i] = spareOf(out[i]) | means[from[i] & NumberBytes];
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
        const bool bent = type == 0;
        net::Net net(area, blockSize);
        net.reserveSidesFor(bent, noise);
        const Pixel bits = colourBitsOf(RGB(red, green, blue));
        const int vertexRows = net.vertexRows();
        SetProgressRange(0, vertexRows);
        // Every side is one colour drawn over the copy, so a pixel's result
        // does not depend on the order of the sides: bands of rows each draw
        // every side that reaches into them, clipped to their rows. Laying
        // the net draws from the one generator in order, so one thread lays
        // it while the others draw the bands it has passed: a band is ready
        // once every row of vertices still to come lies wholly below it.
        const int size = blockSize;
        const Bands bands = bandsOf(vertexRows, static_cast<long long>(size) * width, 16);
        const auto bandOf = [&](int k) {
            const int firstRow = k * bands.unitsPerBand;
            const int endRow = std::min(vertexRows, firstRow + bands.unitsPerBand);
            return std::pair{firstRow, endRow};
        };
        const auto rowsOf = [&](int k) {
            const auto [firstRow, endRow] = bandOf(k);
            return std::pair{net.gridRow(firstRow),
                             endRow == vertexRows ? area.bottom : net.gridRow(endRow)};
        };
        const int spread = net.sideSpread(bent, noise);
        std::vector<int> rowsNeeded =
            rowsReaching(net, spread, bands.count, [&](int k) { return rowsOf(k).second; });
        std::atomic<int> laid{0};
        net.announceRowsTo(laid);
        const auto drawBand = [&](int, int k) {
            const auto [bandTop, bandBottom] = rowsOf(k);
            if (&source != &target) {
                for (int y = bandTop; y < bandBottom; ++y) {
                    const auto from = source.row(y).subspan(static_cast<std::size_t>(area.left),
                                                            static_cast<std::size_t>(width));
                    std::ranges::copy(from, target.row(y).begin() + area.left);
                }
            }
            net::drawSides(target, {area.left, bandTop, area.right, bandBottom}, net, 0,
                           rowsNeeded[static_cast<std::size_t>(k)], bits);
            const auto [firstRow, endRow] = bandOf(k);
            return endRow - firstRow;
        };
        FaultingAhead faulting(net, bent, noise);
        const bool drawn = inBands(
            bands, drawBand,
            [&](int worker) {
                if (worker == 0) lay(net, noise, type, source, context().random);
            },
            [&](int k) {
                return laid.load(std::memory_order_acquire) >=
                       rowsNeeded[static_cast<std::size_t>(k)];
            },
            [&](int worker, bool ready) { faulting.pace(worker, ready, laid); });
        if (!drawn) return;
        // Should a side lie further out than its spread, the bands drawn
        // before it was laid would miss it: draw them all again.
        if (!net.withinSpread(spread)) {
            std::ranges::fill(rowsNeeded, vertexRows);
            inBands(bands, drawBand);
        }
    });
}

} // namespace lumiran

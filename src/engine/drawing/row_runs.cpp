#include "engine/drawing/row_runs.h"

#include <algorithm>
#include <cmath>

namespace lumiran::drawing {
namespace {

// floor(sqrt(v)) exactly, for 0 <= v < 2^62.
std::int64_t integerSqrt(std::int64_t v) {
    auto r = static_cast<std::int64_t>(std::sqrt(static_cast<double>(v)));
    while (r * r > v)
        --r;
    while ((r + 1) * (r + 1) <= v)
        ++r;
    return r;
}

void mergeSorted(std::vector<Run>& runs) {
    std::size_t out = 0;
    for (std::size_t i = 1; i < runs.size(); ++i) {
        if (runs[i].left <= runs[out].right + 1) {
            runs[out].right = std::max(runs[out].right, runs[i].right);
        } else {
            runs[++out] = runs[i];
        }
    }
    if (!runs.empty()) runs.resize(out + 1);
}

} // namespace

Pen::Pen(int width)
    : width_(std::clamp(width, 1, 32767)), low_(-(width_ - 1) / 2), high_(width_ / 2) {
    // Offsets (dx, dy) with (2 dx - e)^2 + (2 dy - e)^2 <= width^2, e = 1 for
    // an even width: the disc's centre lies on the corner shared by the four
    // middle pixels then, and on the middle pixel's centre for an odd width.
    const std::int64_t e = width_ % 2 == 0 ? 1 : 0;
    const std::int64_t w2 = std::int64_t{width_} * width_;
    for (int dy = low_; dy <= high_; ++dy) {
        const std::int64_t v = 2 * dy - e;
        const std::int64_t s = integerSqrt(w2 - v * v);
        // |2 dx - e| <= s
        const std::int64_t left = (e - s + 1) >> 1; // ceil((e - s) / 2)
        const std::int64_t right = (e + s) >> 1;    // floor((e + s) / 2)
        spans_.push_back(
            {std::max<std::int64_t>(left, low_), std::min<std::int64_t>(right, high_)});
    }
}

Window Pen::reach(const Window& visible) const {
    return {visible.left - high_, visible.top - high_, visible.right - low_, visible.bottom - low_};
}

void RowRuns::reset(const Window& window) {
    window_ = window;
    entries_.clear();
    runs_.clear();
    rowStart_.clear();
    first_ = 0;
    last_ = -1;
    sorted_ = true;
}

void RowRuns::add(std::int64_t y, std::int64_t left, std::int64_t right) {
    if (y < window_.top || y > window_.bottom) return;
    left = std::max(left, window_.left);
    right = std::min(right, window_.right);
    if (left > right) return;
    if (!entries_.empty()) {
        Entry& last = entries_.back();
        if (last.y == y && left <= last.run.right + 1 && right + 1 >= last.run.left) {
            // Widened to the left, the run may now start before an earlier
            // run of its row: then the rows need their sort.
            if (left < last.run.left && entries_.size() >= 2) {
                const Entry& before = entries_[entries_.size() - 2];
                if (before.y == y && before.run.left > left) sorted_ = false;
            }
            last.run.left = std::min(last.run.left, left);
            last.run.right = std::max(last.run.right, right);
            return;
        }
        if (y < last.y || (y == last.y && left < last.run.left)) sorted_ = false;
    }
    entries_.push_back({y, {left, right}});
}

void RowRuns::finish() {
    if (entries_.empty()) return;
    if (!sorted_) {
        std::ranges::sort(entries_, [](const Entry& a, const Entry& b) {
            return a.y != b.y ? a.y < b.y : a.run.left < b.run.left;
        });
    }
    std::size_t out = 0;
    for (std::size_t i = 1; i < entries_.size(); ++i) {
        Entry& kept = entries_[out];
        if (entries_[i].y == kept.y && entries_[i].run.left <= kept.run.right + 1) {
            kept.run.right = std::max(kept.run.right, entries_[i].run.right);
        } else {
            entries_[++out] = entries_[i];
        }
    }
    entries_.resize(out + 1);
    sorted_ = true;

    first_ = entries_.front().y;
    last_ = entries_.back().y;
    runs_.clear();
    runs_.reserve(entries_.size());
    rowStart_.assign(static_cast<std::size_t>(last_ - first_ + 2), 0);
    for (const Entry& e : entries_) {
        runs_.push_back(e.run);
        ++rowStart_[static_cast<std::size_t>(e.y - first_ + 1)];
    }
    for (std::size_t i = 1; i < rowStart_.size(); ++i)
        rowStart_[i] += rowStart_[i - 1];
}

std::span<const Run> RowRuns::row(std::int64_t y) const {
    if (runs_.empty() || y < first_ || y > last_) return {};
    const auto i = static_cast<std::size_t>(y - first_);
    return std::span<const Run>(runs_).subspan(rowStart_[i], rowStart_[i + 1] - rowStart_[i]);
}

void paintRuns(Surface& surface, const Window& visible, const RowRuns& shape, const Pen& pen,
               BinaryTable table, Pixel colour) {
    if (shape.empty() || visible.empty()) return;
    const auto paintRow = [&](std::int64_t y, std::int64_t left, std::int64_t right) {
        left = std::max(left, visible.left);
        right = std::min(right, visible.right);
        if (left > right) return;
        fillRow(table, &surface.at(static_cast<int>(left), static_cast<int>(y)), colour,
                static_cast<std::size_t>(right - left + 1));
    };
    const std::int64_t top = std::max(shape.firstRow() + pen.low(), visible.top);
    const std::int64_t bottom = std::min(shape.lastRow() + pen.high(), visible.bottom);
    if (pen.width() == 1) {
        for (std::int64_t y = top; y <= bottom; ++y) {
            for (const Run& run : shape.row(y))
                paintRow(y, run.left, run.right);
        }
        return;
    }
    // A row of the wide shape is the union of the pen's spans laid on the
    // thin rows within the pen's reach.
    std::vector<Run> covered;
    for (std::int64_t y = top; y <= bottom; ++y) {
        covered.clear();
        const std::int64_t dyFirst = std::max<std::int64_t>(pen.low(), y - shape.lastRow());
        const std::int64_t dyLast = std::min<std::int64_t>(pen.high(), y - shape.firstRow());
        for (std::int64_t dy = dyFirst; dy <= dyLast; ++dy) {
            const Run span = pen.span(static_cast<int>(dy));
            for (const Run& run : shape.row(y - dy))
                covered.push_back({run.left + span.left, run.right + span.right});
        }
        std::ranges::sort(covered, {}, &Run::left);
        mergeSorted(covered);
        for (const Run& run : covered)
            paintRow(y, run.left, run.right);
    }
}

} // namespace lumiran::drawing

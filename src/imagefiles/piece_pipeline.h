#pragma once

// A file's rows moved a piece at a time through two buffers, one thread on
// each side: packing a piece while the last is written. Each side is about
// as costly as the other. (Reading gains nothing so: the kernel's copy into
// a small buffer is cheap beside the expanding.)
#include "engine/picture_memory.h"
#include "engine/worker_pool.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <thread>
#include <vector>

namespace lumiran {

// Picture memory: a piece of a few MiB then faults once, in a huge page.
using PieceBuffer = std::vector<std::uint8_t, PictureAllocator<std::uint8_t>>;

// Calls make(piece, buffer) for pieces 0 .. count - 1 in order on a second
// thread and take(piece, buffer) in order on the calling one: piece i is
// made into buffer i % 2 once piece i - 2 was taken. A false from either
// stops both and returns false; an exception thrown by either ends both
// and is rethrown here. Few pieces, or one core, are not worth a thread:
// both then run on the caller.
template <typename Make, typename Take>
bool throughTwoBuffers(std::size_t count, Make&& make, Take&& take) {
    std::array<PieceBuffer, 2> buffers;
    constexpr std::size_t LeastForAThread = 4;
    if (count < LeastForAThread || availableCores() < 2) {
        for (std::size_t piece = 0; piece < count; ++piece) {
            if (!make(piece, buffers[0]) || !take(piece, buffers[0])) return false;
        }
        return true;
    }
    // A piece takes some tens of microseconds on either side, about as long
    // as waking a sleeping thread: each side spins, yielding, for the other.
    std::atomic<std::size_t> made{0};
    std::atomic<std::size_t> taken{0};
    std::atomic<bool> stop{false};
    std::exception_ptr failure;
    const auto waitFor = [&](auto&& done) {
        while (!done() && !stop.load())
            std::this_thread::yield();
        return done();
    };
    std::jthread maker([&] {
        for (std::size_t piece = 0; piece < count; ++piece) {
            if (!waitFor([&] { return piece < taken.load() + 2; })) return;
            bool ok = false;
            try {
                ok = make(piece, buffers[piece % 2]);
            } catch (...) {
                failure = std::current_exception();
            }
            if (!ok) {
                stop = true;
                return;
            }
            made = piece + 1;
        }
    });
    bool ok = true;
    for (std::size_t piece = 0; piece < count && ok; ++piece) {
        if (!waitFor([&] { return made.load() > piece; })) {
            ok = false;
            break;
        }
        try {
            ok = take(piece, buffers[piece % 2]);
        } catch (...) {
            // The maker may be waiting for this buffer.
            stop = true;
            throw;
        }
        if (!ok) stop = true;
        taken = piece + 1;
    }
    maker.join();
    if (failure) std::rethrow_exception(failure);
    return ok;
}

} // namespace lumiran

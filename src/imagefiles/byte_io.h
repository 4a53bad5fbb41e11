#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace lumiran {

// Little-endian fields of a file held in memory; reads past the end give 0
// and mark the reader as short, so headers can be parsed first and checked once.
class ByteReader {
  public:
    explicit ByteReader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    [[nodiscard]] std::uint8_t u8(std::size_t offset) {
        if (offset >= bytes_.size()) {
            short_ = true;
            return 0;
        }
        return bytes_[offset];
    }
    [[nodiscard]] std::uint16_t u16(std::size_t offset) {
        return static_cast<std::uint16_t>(u8(offset) | (u8(offset + 1) << 8));
    }
    [[nodiscard]] std::uint32_t u32(std::size_t offset) {
        return static_cast<std::uint32_t>(u16(offset)) |
               (static_cast<std::uint32_t>(u16(offset + 2)) << 16);
    }
    [[nodiscard]] std::int32_t i32(std::size_t offset) {
        return static_cast<std::int32_t>(u32(offset));
    }
    [[nodiscard]] bool wasShort() const { return short_; }
    [[nodiscard]] std::size_t size() const { return bytes_.size(); }
    [[nodiscard]] std::span<const std::uint8_t> bytes() const { return bytes_; }

  private:
    std::span<const std::uint8_t> bytes_;
    bool short_ = false;
};

// Appends little-endian fields to a byte buffer.
class ByteWriter {
  public:
    void u8(std::uint8_t v) { bytes_.push_back(v); }
    void u16(std::uint16_t v) {
        u8(static_cast<std::uint8_t>(v));
        u8(static_cast<std::uint8_t>(v >> 8));
    }
    void u32(std::uint32_t v) {
        u16(static_cast<std::uint16_t>(v));
        u16(static_cast<std::uint16_t>(v >> 16));
    }
    void i32(std::int32_t v) { u32(static_cast<std::uint32_t>(v)); }
    void zeros(std::size_t count) { bytes_.insert(bytes_.end(), count, 0); }
    void reserve(std::size_t count) { bytes_.reserve(count); }
    [[nodiscard]] std::vector<std::uint8_t>& bytes() { return bytes_; }

  private:
    std::vector<std::uint8_t> bytes_;
};

} // namespace lumiran

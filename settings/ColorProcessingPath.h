#pragma once

#include <cstdint>
#include <optional>
#include <variant>

/// The bits of the key `ColorProcessingPath`, the codec's summary of the colour-processing choices:
///
///     bit  0      set together with any stage that is switched on by its check box; never cleared
///     bit  1      colour matrix          bit  2      white balance
///     bit  3      look                   bit  5      gamma
///     bits 16-19  presentation demosaic  bits 20-23  render demosaic
///
/// The other bits belong to nobody here. In a 64-bit `long`, switching a stage keeps what stands above bit 31, and
/// choosing a demosaic method clears it. `stored` is nothing where the key is absent, not a number, or not readable as
/// a `long`.
namespace vantrel::colorProcessingPath {

/// The bit of a stage, by its number.
struct Stage {
    std::int32_t bit;
};

/// Four bits for a demosaic method, 0 to 15.
struct DemosaicField {
    int shift;
    constexpr std::uint32_t mask() const { return std::uint32_t{0xF} << shift; }
};

/// What another key has in `ColorProcessingPath`, if anything.
using Part = std::variant<std::monostate, Stage, DemosaicField>;

/// 1 shifted left by `bit` modulo 32, sign-extended: bit 31 covers the upper half of a 64-bit `long` as well.
constexpr long maskOfBit(std::int32_t bit) {
    return static_cast<std::int32_t>(std::uint32_t{1} << (static_cast<std::uint32_t>(bit) % 32));
}

/// The value after a stage was switched on: its bit and bit 0 added, from 0 when nothing is stored.
constexpr long withBitSet(std::optional<long> stored, std::int32_t bit) {
    return stored.value_or(0) | maskOfBit(bit) | 1;
}

/// The value after a stage was switched off: its bit removed, bit 0 kept; 0 when nothing is stored.
constexpr long withBitCleared(std::optional<long> stored, std::int32_t bit) {
    return stored.value_or(0) & ~maskOfBit(bit);
}

/// The value after a demosaic method was chosen. Bits above bit 31 are dropped. When nothing is stored, the field is
/// all there is: the stage bits stay zero whatever the check boxes show.
constexpr long withDemosaic(std::optional<long> stored, DemosaicField field, std::uint32_t method) {
    const auto kept = static_cast<std::uint32_t>(stored.value_or(0)) & ~field.mask();
    return static_cast<long>(kept | ((method << field.shift) & field.mask()));
}

/// Whether `path` has a stage's bit.
constexpr bool hasStage(long path, Stage stage) {
    return (path & maskOfBit(stage.bit)) != 0;
}

/// The demosaic method in a field of `path`.
constexpr long methodIn(long path, DemosaicField field) {
    return static_cast<long>((static_cast<std::uint32_t>(path) & field.mask()) >> field.shift);
}

}  // namespace vantrel::colorProcessingPath

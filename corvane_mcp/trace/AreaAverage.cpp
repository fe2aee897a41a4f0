#include "corvane_mcp/trace/AreaAverage.h"

#include <algorithm>
#include <cstring>

namespace corvane {

namespace {

/// The four channels of a pixel, worked on together.
using Channels = float __attribute__((vector_size(16)));

constexpr std::size_t channels = Picture::bytesPerPixel;

Channels load(const float* from) {
  Channels loaded;
  std::memcpy(&loaded, from, sizeof loaded);
  return loaded;
}

Channels widen(const std::uint8_t* pixel) {
  return Channels{static_cast<float>(pixel[0]), static_cast<float>(pixel[1]),
                  static_cast<float>(pixel[2]), static_cast<float>(pixel[3])};
}

void storeRounded(Channels sum, std::uint8_t* pixel) {
  using Integers = std::int32_t __attribute__((vector_size(16)));
  const auto rounded = __builtin_convertvector(sum + 0.5F, Integers);
  for (int i = 0; i < 4; ++i) pixel[i] = static_cast<std::uint8_t>(rounded[i]);
}

/// How many pixels it takes for a side when each stands for `reduction` units of it.
int reducedLength(int length, int reduction) {
  return (length + reduction - 1) / reduction;
}

std::vector<AxisShares::Share> allShares(const AxisShares& axis, int pixels) {
  std::vector<AxisShares::Share> shares;
  shares.reserve(static_cast<std::size_t>(pixels));
  for (int i = 0; i < pixels; ++i) shares.push_back(axis.of(i));
  return shares;
}

}  // namespace

AxisShares::Share AxisShares::of(int pixel) const {
  // In units that make all borders whole numbers: a cell is `length` long.
  const std::int64_t whole = reduction * cells;
  const std::int64_t start = pixel * whole;
  const std::int64_t cell = start / length;
  const std::int64_t leftInCell = (cell + 1) * length - start;
  const std::int64_t inCell = std::min(leftInCell, whole);
  const auto partOfPixel = [whole](std::int64_t units) {
    return static_cast<float>(units) / static_cast<float>(whole);
  };
  return {static_cast<int>(cell), partOfPixel(inCell), partOfPixel(whole - inCell),
          leftInCell <= whole};
}

AreaAverage::AreaAverage(PictureSize from, PictureSize to, int reduction)
    : rows(from.height, reduction, to.height), result(to) {
  const AxisShares axis(from.width, reduction, to.width);
  columns = allShares(axis, reducedLength(from.width, reduction));
  pixelInCell = axis.pixelInCell() * rows.pixelInCell();
  firstRow.resize(columns.size() * channels);
  wholeRows.resize(firstRow.size());
  sums.resize(firstRow.size());
}

void AreaAverage::addRow(std::span<const std::uint8_t> row) {
  const auto share = rows.of(nextRow++);
  const bool isWhole = share.inCell == 1;
  if (isWhole) addWholeRow(row);
  if (!share.endsCell) return;
  sumColumns(row, isWhole ? 0 : share.inCell);
  writeRow(share.cell);
  std::fill(wholeRows.begin(), wholeRows.end(), std::uint16_t{0});
  std::copy(row.begin(), row.end(), firstRow.begin());
  firstPart = share.inNext;
}

void AreaAverage::addWholeRow(std::span<const std::uint8_t> row) {
  for (std::size_t i = 0; i < wholeRows.size(); ++i) {
    wholeRows[i] = static_cast<std::uint16_t>(wholeRows[i] + row[i]);
  }
}

void AreaAverage::sumColumns(std::span<const std::uint8_t> lastRow, float lastPart) {
  for (std::size_t i = 0; i < sums.size(); ++i) {
    sums[i] = static_cast<float>(wholeRows[i]) + firstPart * static_cast<float>(firstRow[i]) +
              lastPart * static_cast<float>(lastRow[i]);
  }
}

void AreaAverage::writeRow(int y) {
  std::uint8_t* pixel = result.at(0, y);
  const float* sum = sums.data();
  Channels cell{};
  for (const auto& share : columns) {
    const Channels column = load(sum);
    sum += channels;
    cell += column * share.inCell;
    if (!share.endsCell) continue;
    storeRounded(cell * pixelInCell, pixel);
    pixel += channels;
    cell = column * share.inNext;
  }
}

ScatteredAreaAverage::ScatteredAreaAverage(PictureSize from, PictureSize to)
    : size(to),
      rows(from.height, 1, to.height),
      sums(static_cast<std::size_t>(to.width) * static_cast<std::size_t>(to.height) * channels) {
  const AxisShares axis(from.width, 1, to.width);
  columns = allShares(axis, from.width);
  pixelInCell = axis.pixelInCell() * rows.pixelInCell();
}

void ScatteredAreaAverage::add(std::span<const std::uint8_t> pixels, int y, int firstColumn,
                               int columnStep) {
  const auto share = rows.of(y);
  addToRow(pixels, share.cell, share.inCell, firstColumn, columnStep);
  if (share.inNext > 0) {
    addToRow(pixels, share.cell + 1, share.inNext, firstColumn, columnStep);
  }
}

void ScatteredAreaAverage::addToRow(std::span<const std::uint8_t> pixels, int resultRow,
                                    float weight, int firstColumn, int columnStep) {
  float* row = sums.data() + static_cast<std::size_t>(resultRow) *
                                 static_cast<std::size_t>(size.width) * channels;
  const auto addTo = [row](int cell, Channels amount) {
    float* sum = row + static_cast<std::size_t>(cell) * channels;
    const Channels added = load(sum) + amount;
    std::memcpy(sum, &added, sizeof added);
  };
  int x = firstColumn;
  for (std::size_t i = 0; i < pixels.size(); i += channels, x += columnStep) {
    const auto& share = columns[static_cast<std::size_t>(x)];
    const Channels pixel = widen(&pixels[i]) * weight;
    addTo(share.cell, pixel * share.inCell);
    if (share.inNext > 0) addTo(share.cell + 1, pixel * share.inNext);
  }
}

Picture ScatteredAreaAverage::take() const {
  Picture result(size);
  for (std::size_t i = 0; i < sums.size(); i += channels) {
    storeRounded(load(&sums[i]) * pixelInCell, &result.bytes[i]);
  }
  return result;
}

}  // namespace corvane

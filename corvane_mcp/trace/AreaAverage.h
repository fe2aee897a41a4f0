#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "corvane_mcp/trace/Picture.h"

namespace corvane {

/// How the pixels along one side of a picture spread over the cells of a side that has at most as
/// many.
class AxisShares {
 public:
  /// A pixel lies in one cell or across the border of two. The parts are fractions of the pixel, so
  /// that whole pixels add up without rounding.
  struct Share {
    int cell = 0;
    float inCell = 1;
    /// What lies in the cell after; 0 when the pixel does not reach into it. A last pixel that
    /// stands for less may seem to reach behind the last cell.
    float inNext = 0;
    /// Whether the pixel is the last with a part in `cell`.
    bool endsCell = false;
  };

  /// Every pixel stands for `reduction` units of a side `length` units long, the last one for what
  /// is left.
  AxisShares(int length, int reduction, int cells)
      : length(length), reduction(reduction), cells(cells) {}

  [[nodiscard]] Share of(int pixel) const;
  /// The part of a cell that a whole pixel is.
  [[nodiscard]] float pixelInCell() const {
    return static_cast<float>(reduction * cells) / static_cast<float>(length);
  }

 private:
  std::int64_t length;
  std::int64_t reduction;
  std::int64_t cells;
};

/// Scales a picture down by area: every pixel of the result is the average of the area it covers,
/// pixels across a border counted by their part. Takes the rows from top to bottom and keeps sums
/// of one row, so that its memory does not grow with the height of the picture.
class AreaAverage {
 public:
  /// No side of `to` is longer than that of `from`, nor shorter than a 250th of it. The rows may
  /// come from a decoder that reduces already: then one pixel of theirs stands for `reduction` on
  /// each side of the picture, the last of a side for what is left, and no pixel for more than one
  /// of the result.
  AreaAverage(PictureSize from, PictureSize to, int reduction = 1);

  /// Adds the next row, pixels of four bytes.
  void addRow(std::span<const std::uint8_t> row);

  /// The result, once every row was added.
  [[nodiscard]] Picture take() { return std::move(result); }

 private:
  void addWholeRow(std::span<const std::uint8_t> row);
  void sumColumns(std::span<const std::uint8_t> lastRow, float lastPart);
  void writeRow(int y);

  AxisShares rows;
  std::vector<AxisShares::Share> columns;
  float pixelInCell = 1;
  int nextRow = 0;
  /// What the row of cells in the making has: a part of its first row, and the sum of whole rows.
  std::vector<std::uint8_t> firstRow;
  float firstPart = 0;
  std::vector<std::uint16_t> wholeRows;
  std::vector<float> sums;
  Picture result;
};

/// The same average for pixels that come in any order, as in interlaced pictures. Its memory is
/// that of the result.
class ScatteredAreaAverage {
 public:
  /// No side of `to` is longer than that of `from`.
  ScatteredAreaAverage(PictureSize from, PictureSize to);

  /// Adds pixels of row `y`, four bytes each: those at `firstColumn`, `firstColumn + columnStep`
  /// and so on.
  void add(std::span<const std::uint8_t> pixels, int y, int firstColumn, int columnStep);

  /// The result, once every pixel was added.
  [[nodiscard]] Picture take() const;

 private:
  void addToRow(std::span<const std::uint8_t> pixels, int resultRow, float weight, int firstColumn,
                int columnStep);

  PictureSize size;
  AxisShares rows;
  std::vector<AxisShares::Share> columns;
  float pixelInCell = 1;
  std::vector<float> sums;
};

}  // namespace corvane

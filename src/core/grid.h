// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

/// Rows of cells in one piece of memory. Empty until it is given a size.
template <class T>
class Grid {
  public:
    /// Makes it `rows` x `columns`, every cell `T()`. A grid of that size keeps its cells.
    void allocate(int rows, int columns) {
        if (rows == rows_ && columns == columns_) return;
        rows_ = rows;
        columns_ = columns;
        cells_.assign(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns), T());
    }

    /// Gives the memory back.
    void clear() {
        rows_ = columns_ = 0;
        std::vector<T>().swap(cells_);  // assigning nothing would keep the memory
    }

    /// Sets every cell.
    void fill(const T& value) { cells_.assign(cells_.size(), value); }

    bool empty() const { return cells_.empty(); }
    int rows() const { return rows_; }
    int columns() const { return columns_; }

    /// The cells of a row, 0 to rows() - 1.
    T* operator[](int row) { return &cells_[offset(row)]; }
    const T* operator[](int row) const { return &cells_[offset(row)]; }

  private:
    std::size_t offset(int row) const {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_);
    }

    int rows_ = 0;
    int columns_ = 0;
    std::vector<T> cells_;
};

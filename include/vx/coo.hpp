#ifndef VX_COO_HPP
#define VX_COO_HPP

/**
 * @file
 * A sparse matrix that is assembled from contributions.
 *
 * A matrix is a list of (row, column, value). Contributions are appended, as
 * many to one position as the caller likes; the list is compacted when
 * somebody asks for what it amounts to, or by itself once `slack` (a million)
 * more have come in. Rows and columns are any 32-bit numbers; the matrix has
 * no size but the positions that were used.
 *
 * Compacted    Sorted by column, then by row, and no two elements with one
 *              position: the values of a position are added from the smallest
 *              magnitude to the largest, the negative of two equal ones first,
 *              so that the sum does not depend on the order of the calls. An
 *              element whose values cancel stays, with the value 0.
 * Time         Appending is constant, taken over many. Compacting is linear in
 *              the elements since the last time, plus a pass over the rest.
 * Memory       Compacting takes a second block as large as what came in since
 *              the last time. Where there is none it works in place, more
 *              slowly; it never fails.
 * Failure      Growing throws std::bad_alloc, or beyond 268435455 elements
 *              std::length_error("vector<T> too long"); the matrix is then as
 *              it was.
 * Threads      One thread at a time; the const queries compact too.
 */

#include <cstdint>
#include <vector>

#include "vx/types.h"

namespace VX {

/** A stored entry. */
struct CooMatrixElement {
    int32_t row;
    int32_t column;
    double value;
};

class VX_API CooMatrix {
public:
    using iterator = std::vector<CooMatrixElement>::iterator;
    using const_iterator = std::vector<CooMatrixElement>::const_iterator;

    /** Empty; compacts itself after a million elements. */
    CooMatrix();
    CooMatrix(const CooMatrix &other);
    /** `other` is left empty. */
    CooMatrix(CooMatrix &&other) noexcept;
    CooMatrix &operator=(const CooMatrix &other);
    CooMatrix &operator=(CooMatrix &&other) noexcept;
    ~CooMatrix();

    /** Append a contribution. */
    void Insert(int32_t row, int32_t column, double value);

    /**
     * Append a contribution of 0 and refer to the value of the last element:
     * `m(i, j) += x` adds x at (i, j). Should this very call compact the
     * matrix, the last element in sorted order is meant, whatever its
     * position; Insert has no such exception. Valid until the next call that
     * appends or compacts.
     */
    double &operator()(int32_t row, int32_t column);

    /**
     * Make the matrix symmetric from one triangle: each element off the
     * diagonal is added at the mirrored position too. A matrix that holds both
     * triangles already is doubled off the diagonal.
     */
    void Mirror();

    /** Remove all elements; the memory is kept. */
    void Clear();

    /**
     * Make room for `n` elements in all; 0 and less do nothing. Elements that
     * fit the room do not make the matrix compact itself.
     */
    void Reserve(int32_t n);

    /** The positions used so far, without compacting: smallest and largest, all -1 when there is none. */
    void Dimensions(int32_t &minRow, int32_t &maxRow, int32_t &minColumn, int32_t &maxColumn) const;

    /** Compact, and count the elements. */
    int32_t Size() const;

    /** Compact, and count the elements on the diagonal. */
    int32_t SizeDiagonal() const;

    /** Compact; whether every element below the diagonal (row > column) is 0. A NaN is not. */
    bool IsLowerZero() const;

    /** The same above the diagonal. */
    bool IsUpperZero() const;

    /**
     * Compact, and write a line for each element, after a line with their
     * number. Lines end with CR LF. Nothing happens for a blank path, or when
     * the file cannot be opened; nothing is reported.
     *
     *   [row,column] = value (2 total elements, 1 elements on diagonal)
     *   [0,0] = 2
     *   [1,0] = 0.5
     *
     * @param path  in the toolkit's spelling (vx/path.h); emptied if it exists
     */
    void Print(const char *path) const;

    /**
     * Compact, and write a line for each column from column 0 on: the value of
     * row r in field r, fields and the line ended by the separator, CR LF. A
     * position without an element is an empty field. Path as with Print.
     */
    void PrintCSV(const char *path, const char *separator) const;

    /** The elements as they stand, not compacted. Changing positions is allowed. */
    iterator begin();
    iterator end();
    const_iterator begin() const;
    const_iterator end() const;

private:
    void Compact() const;
    void growFor(size_t more);
    void append(int32_t row, int32_t column, double value);

    mutable int32_t compacted; ///< elements at the last compaction
    int32_t slack;             ///< elements that may come after it; 0 for any number
    mutable int32_t threshold; ///< elements at which the next append compacts
    mutable std::vector<CooMatrixElement> elements;
};

}

#endif

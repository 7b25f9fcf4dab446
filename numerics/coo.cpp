// The coordinate matrix.

#include "vx/coo.hpp"

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <utility>

#include "numerics/coo_compact.h"
#include "vx/file.h"
#include "vx/str.h"

namespace VX {

namespace {

constexpr int32_t startingSlack = 1000000;
constexpr size_t mostElements = 268435455;

int32_t asCount(size_t size) noexcept
{
    return static_cast<int32_t>(size);
}

/** A file that is written; it stays closed for a blank path, or when it cannot be opened. */
class Output {
public:
    explicit Output(const char *path)
    {
        // Binary, so that the line ends are the same on every system.
        if (path && !VxStrIsBlank(path))
            VxFileOpen(&stream, path, "wb");
    }
    ~Output() { VxFileClose(&stream, 0); }
    Output(const Output &) = delete;
    Output &operator=(const Output &) = delete;

    FILE *stream = nullptr;
};

}

CooMatrix::CooMatrix() : compacted(0), slack(startingSlack), threshold(startingSlack) {}

CooMatrix::CooMatrix(const CooMatrix &other) = default;

CooMatrix::CooMatrix(CooMatrix &&other) noexcept
    : compacted(std::exchange(other.compacted, 0)), slack(other.slack),
      threshold(std::exchange(other.threshold, other.slack)), elements(std::move(other.elements))
{
}

CooMatrix &CooMatrix::operator=(const CooMatrix &other)
{
    if (this != &other) {
        elements = other.elements;
        compacted = other.compacted;
        slack = other.slack;
        threshold = other.threshold;
    }
    return *this;
}

CooMatrix &CooMatrix::operator=(CooMatrix &&other) noexcept
{
    if (this != &other) {
        elements = std::move(other.elements);
        slack = other.slack;
        compacted = std::exchange(other.compacted, 0);
        threshold = std::exchange(other.threshold, other.slack);
        other.elements.clear();
    }
    return *this;
}

CooMatrix::~CooMatrix() = default;

/** Room for more elements, or an exception; growth stays by a factor. */
void CooMatrix::growFor(size_t more)
{
    if (more > mostElements - elements.size())
        throw std::length_error("vector<T> too long");
    const size_t needed = elements.size() + more;
    if (needed > elements.capacity())
        elements.reserve(std::min(std::max(needed, elements.capacity() * 2), mostElements));
}

void CooMatrix::append(int32_t row, int32_t column, double value)
{
    if (elements.size() == elements.capacity())
        growFor(1);
    elements.push_back({row, column, value});
    if (asCount(elements.size()) >= threshold && slack != 0)
        Compact();
}

void CooMatrix::Insert(int32_t row, int32_t column, double value)
{
    append(row, column, value);
}

double &CooMatrix::operator()(int32_t row, int32_t column)
{
    append(row, column, 0.0);
    return elements.back().value;
}

void CooMatrix::Mirror()
{
    Compact();
    Compact();
    const size_t count = elements.size();
    growFor(count - static_cast<size_t>(SizeDiagonal()));
    for (size_t i = 0; i < count; ++i) {
        const CooMatrixElement e = elements[i];
        if (e.row != e.column)
            elements.push_back({e.column, e.row, e.value});
    }
    Compact();
}

void CooMatrix::Clear()
{
    elements.clear();
    compacted = 0;
    threshold = slack;
}

void CooMatrix::Reserve(int32_t n)
{
    if (n <= 0)
        return;
    const auto room = static_cast<size_t>(n);
    if (room > mostElements)
        throw std::length_error("vector<T> too long");
    elements.reserve(room);
    const int32_t capacity = asCount(elements.capacity());
    if (capacity > threshold && slack != 0)
        threshold = capacity;
}

void CooMatrix::Dimensions(int32_t &minRow, int32_t &maxRow, int32_t &minColumn, int32_t &maxColumn) const
{
    minRow = maxRow = minColumn = maxColumn = -1;
    if (elements.empty())
        return;
    minRow = maxRow = elements[0].row;
    minColumn = maxColumn = elements[0].column;
    for (const auto &e : elements) {
        minRow = std::min(minRow, e.row);
        maxRow = std::max(maxRow, e.row);
        minColumn = std::min(minColumn, e.column);
        maxColumn = std::max(maxColumn, e.column);
    }
}

int32_t CooMatrix::Size() const
{
    Compact();
    return asCount(elements.size());
}

int32_t CooMatrix::SizeDiagonal() const
{
    Compact();
    return static_cast<int32_t>(
        std::count_if(elements.begin(), elements.end(), [](const auto &e) { return e.row == e.column; }));
}

bool CooMatrix::IsLowerZero() const
{
    Compact();
    return std::none_of(elements.begin(), elements.end(),
                        [](const auto &e) { return e.row > e.column && e.value != 0.0; });
}

bool CooMatrix::IsUpperZero() const
{
    Compact();
    return std::none_of(elements.begin(), elements.end(),
                        [](const auto &e) { return e.row < e.column && e.value != 0.0; });
}

void CooMatrix::Print(const char *path) const
{
    Output file(path);
    if (!file.stream)
        return;
    VxFprintf(file.stream, "[row,column] = value (%d total elements, %d elements on diagonal)\r\n", Size(),
              SizeDiagonal());
    for (const auto &e : elements)
        VxFprintf(file.stream, "[%d,%d] = %g\r\n", e.row, e.column, e.value);
}

void CooMatrix::PrintCSV(const char *path, const char *separator) const
{
    Compact();
    Output file(separator ? path : nullptr);
    if (!file.stream)
        return;
    int32_t row = 0, column = 0;
    for (const auto &e : elements) {
        for (; column < e.column; ++column) {
            VxFprintf(file.stream, "%s\r\n", separator);
            row = 0;
        }
        for (; row < e.row; ++row)
            VxFprintf(file.stream, "%s", separator);
        VxFprintf(file.stream, "%g", e.value);
        row = e.row;
        column = e.column;
    }
    VxFprintf(file.stream, "%s\r\n", separator);
}

CooMatrix::iterator CooMatrix::begin()
{
    return elements.begin();
}

CooMatrix::iterator CooMatrix::end()
{
    return elements.end();
}

CooMatrix::const_iterator CooMatrix::begin() const
{
    return elements.begin();
}

CooMatrix::const_iterator CooMatrix::end() const
{
    return elements.end();
}

void CooMatrix::Compact() const
{
    const size_t count = elements.size();
    const auto known = static_cast<size_t>(compacted);
    if (count != 0 && count != known)
        elements.resize(vx::numerics::compactElements(elements.data(), count, std::min(known, count)));
    compacted = asCount(elements.size());
    threshold = compacted + slack;
}

}

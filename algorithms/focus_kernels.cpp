#include "algorithms/focus_kernels.h"

#include "algorithms/kernel_targets.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace focus_kernels {

namespace {

/// Columns that one 32-bit sum may take: 2048 x 2 x 1020 x 1020 still fits.
constexpr int kTileColumns = 2048;
/// Pixels that one 32-bit sum of grey values may take.
constexpr std::size_t kTilePixels = std::size_t { 1 } << 20;

/// The library's default border: mirrored without repeating the edge pixel.
int mirrored(int index, int size)
{
    if (size == 1)
        return 0;
    if (index < 0)
        return -index;
    return index < size ? index : 2 * size - 2 - index;
}

/// A row and its two neighbours, mirrored at the first and the last row.
struct RowTriple {
    RowTriple(const unsigned char* pixels, int row, int width, int height)
        : above(pixels + static_cast<std::ptrdiff_t>(mirrored(row - 1, height)) * width)
        , centre(pixels + static_cast<std::ptrdiff_t>(row) * width)
        , below(pixels + static_cast<std::ptrdiff_t>(mirrored(row + 1, height)) * width)
    {
    }
    const unsigned char* above;
    const unsigned char* centre;
    const unsigned char* below;
};

struct Moments {
    std::int64_t sum = 0;
    std::int64_t squares = 0;
};

int laplacianAt(const RowTriple& rows, int left, int column, int right)
{
    return rows.above[column] + rows.below[column] + rows.centre[left] + rows.centre[right]
        - 4 * rows.centre[column];
}

int squaredSobelAt(const RowTriple& rows, int left, int column, int right)
{
    const int gx = rows.above[right] + 2 * rows.centre[right] + rows.below[right] - rows.above[left]
        - 2 * rows.centre[left] - rows.below[left];
    const int gy = rows.below[left] + 2 * rows.below[column] + rows.below[right] - rows.above[left]
        - 2 * rows.above[column] - rows.above[right];
    return gx * gx + gy * gy;
}

/// Laplacian over the columns first..last-1, which have both neighbours.
QR9_KERNEL void addLaplacian(const RowTriple& rows, int first, int last, Moments& moments)
{
    const unsigned char* above = rows.above;
    const unsigned char* centre = rows.centre;
    const unsigned char* below = rows.below;
    for (int tile = first; tile < last; tile += kTileColumns) {
        const int end = std::min(last, tile + kTileColumns);
        std::int32_t sum = 0;
        std::int32_t squares = 0;
        for (int x = tile; x < end; ++x) {
            const auto value = static_cast<std::int16_t>(
                above[x] + below[x] + centre[x - 1] + centre[x + 1] - 4 * centre[x]);
            sum += value;
            squares += value * value;
        }
        moments.sum += sum;
        moments.squares += squares;
    }
}

/// Squared Sobel gradient over the columns first..last-1, which have both neighbours.
QR9_KERNEL std::int64_t sumSquaredSobel(const RowTriple& rows, int first, int last)
{
    const unsigned char* above = rows.above;
    const unsigned char* centre = rows.centre;
    const unsigned char* below = rows.below;
    std::int64_t total = 0;
    for (int tile = first; tile < last; tile += kTileColumns) {
        const int end = std::min(last, tile + kTileColumns);
        std::uint32_t sum = 0;
        for (int x = tile; x < end; ++x) {
            const auto gx = static_cast<std::int16_t>(above[x + 1] + 2 * centre[x + 1] + below[x + 1]
                - above[x - 1] - 2 * centre[x - 1] - below[x - 1]);
            const auto gy = static_cast<std::int16_t>(
                below[x - 1] + 2 * below[x] + below[x + 1] - above[x - 1] - 2 * above[x] - above[x + 1]);
            sum += static_cast<std::uint32_t>(gx * gx) + static_cast<std::uint32_t>(gy * gy);
        }
        total += sum;
    }
    return total;
}

/// Sum of grey value minus `floor`, not below 0. Written as a sum of absolute differences of bytes, for
/// which processors have one instruction.
QR9_KERNEL std::int64_t sumAbove(const unsigned char* pixels, std::size_t count, unsigned char floor)
{
    std::int64_t total = 0;
    for (std::size_t tile = 0; tile < count; tile += kTilePixels) {
        const std::size_t end = std::min(count, tile + kTilePixels);
        std::uint32_t sum = 0;
        for (std::size_t i = tile; i < end; ++i) {
            const unsigned char raised = pixels[i] > floor ? pixels[i] : floor;
            sum += static_cast<std::uint32_t>(std::abs(raised - floor));
        }
        total += sum;
    }
    return total;
}

/// The same with every odd excess one less: what rounding to even makes of halves.
QR9_KERNEL std::int64_t sumAboveToEven(const unsigned char* pixels, std::size_t count, unsigned char floor)
{
    std::int64_t total = 0;
    for (std::size_t tile = 0; tile < count; tile += kTilePixels) {
        const std::size_t end = std::min(count, tile + kTilePixels);
        std::uint32_t sum = 0;
        for (std::size_t i = tile; i < end; ++i) {
            const unsigned char raised = pixels[i] > floor ? pixels[i] : floor;
            sum += static_cast<unsigned char>((raised - floor) & 0xFE);
        }
        total += sum;
    }
    return total;
}

using GreyTable = std::array<unsigned char, 256>;

/// What every grey value becomes, by the exact expression, so that each tie is kept.
GreyTable tableOfExcess(double floor)
{
    GreyTable table {};
    for (int grey = 0; grey < 256; ++grey)
        table[static_cast<std::size_t>(grey)] = cv::saturate_cast<uchar>(grey - floor);
    return table;
}

bool isSaturatingSubtraction(const GreyTable& table, int floor, int mask)
{
    for (int grey = 0; grey < 256; ++grey) {
        if (table[static_cast<std::size_t>(grey)] != (std::max(grey - floor, 0) & mask))
            return false;
    }
    return true;
}

std::int64_t sumByTable(const unsigned char* pixels, std::size_t count, const GreyTable& table)
{
    std::int64_t total = 0;
    for (std::size_t i = 0; i < count; ++i)
        total += table[pixels[i]];
    return total;
}

std::int64_t sumOfExcess(const unsigned char* pixels, std::size_t count, double floor)
{
    const GreyTable table = tableOfExcess(floor);
    // Nearly every table is a subtraction of whole grey values; a floor that ends on .5 rounds every second
    // value down to the even one, which clears the lowest bit.
    if (floor >= 0.0 && floor <= 255.0) {
        for (int whole = static_cast<int>(floor); whole <= std::min(static_cast<int>(floor) + 1, 255);
             ++whole) {
            if (isSaturatingSubtraction(table, whole, 0xFF))
                return sumAbove(pixels, count, static_cast<unsigned char>(whole));
            if (isSaturatingSubtraction(table, whole, 0xFE))
                return sumAboveToEven(pixels, count, static_cast<unsigned char>(whole));
        }
    }
    return sumByTable(pixels, count, table);
}

/// The library multiplies by the reciprocal; a division has other bits.
double meanOf(std::int64_t sum, std::size_t count)
{
    return static_cast<double>(sum) * (1.0 / static_cast<double>(count));
}

} // namespace

double meanAboveMultipleOfMean(const unsigned char* pixels, std::size_t count, double alpha)
{
    const double floor = alpha * meanOf(sumAbove(pixels, count, 0), count);
    return meanOf(sumOfExcess(pixels, count, floor), count);
}

double varianceOfLaplacian(const unsigned char* pixels, int width, int height)
{
    Moments moments;
    for (int row = 0; row < height; ++row) {
        const RowTriple rows(pixels, row, width, height);
        addLaplacian(rows, 1, width - 1, moments);
        for (const int edge : { 0, width - 1 }) {
            const int value = laplacianAt(rows, mirrored(edge - 1, width), edge, mirrored(edge + 1, width));
            moments.sum += value;
            moments.squares += std::int64_t { value } * value;
            if (width == 1)
                break;
        }
    }
    const double scale = 1.0 / (static_cast<double>(width) * height);
    const double mean = static_cast<double>(moments.sum) * scale;
    const double deviation
        = std::sqrt(std::max(static_cast<double>(moments.squares) * scale - mean * mean, 0.0));
    return deviation * deviation;
}

double meanSquaredSobel(const unsigned char* pixels, int width, int height)
{
    std::int64_t total = 0;
    for (int row = 0; row < height; ++row) {
        const RowTriple rows(pixels, row, width, height);
        total += sumSquaredSobel(rows, 1, width - 1);
        for (const int edge : { 0, width - 1 }) {
            total += squaredSobelAt(rows, mirrored(edge - 1, width), edge, mirrored(edge + 1, width));
            if (width == 1)
                break;
        }
    }
    return meanOf(total, static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
}

} // namespace focus_kernels

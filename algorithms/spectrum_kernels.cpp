#include "algorithms/spectrum_kernels.h"

#include "algorithms/kernel_targets.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstddef>

namespace spectrum_kernels {

namespace {

struct ComplexBin {
    float re;
    float im;
};

/// First times conjugated second, as cv::mulSpectrums forms it: in double, stored as float.
ComplexBin crossPower(float aRe, float aIm, float bRe, float bIm)
{
    const double conjugated = -static_cast<double>(bIm);
    return { static_cast<float>(static_cast<double>(aRe) * bRe - aIm * conjugated),
        static_cast<float>(aRe * conjugated + static_cast<double>(aIm) * bRe) };
}

float magnitude(ComplexBin bin)
{
    return static_cast<float>(
        std::sqrt(static_cast<double>(bin.re) * bin.re + static_cast<double>(bin.im) * bin.im));
}

// The library divides by the magnitude as by a complex number whose imaginary part is zero. It does so in
// float within the rows, and in double down the two columns whose horizontal frequency is real.

/// The bins first, first + 2 .. of one row, each a pair of real and imaginary part.
QR9_KERNEL void normaliseRow(const float* reference, float* spectrum, int first, int end)
{
    for (int j = first; j < end; j += 2) {
        const ComplexBin bin = crossPower(reference[j], reference[j + 1], spectrum[j], spectrum[j + 1]);
        const float scale = magnitude(bin);
        const float denominator = scale * scale + 0.0F * 0.0F + FLT_EPSILON;
        spectrum[j] = (bin.re * scale + bin.im * 0.0F) / denominator;
        spectrum[j + 1] = (bin.im * scale - bin.re * 0.0F) / denominator;
    }
}

/// The purely real bins: the product in float, over its magnitude.
float normalisedReal(float reference, float spectrum)
{
    const float bin = reference * spectrum;
    return bin / (std::abs(bin) + FLT_EPSILON);
}

/// A column of real horizontal frequency: its bins are pairs of rows.
void normaliseColumn(const cv::Mat& reference, cv::Mat& spectrum, int column)
{
    const int rows = spectrum.rows;
    const auto at = [&](int row) -> float& { return spectrum.ptr<float>(row)[column]; };
    const auto referenceAt = [&](int row) { return reference.ptr<float>(row)[column]; };

    at(0) = normalisedReal(referenceAt(0), at(0));
    if (rows % 2 == 0)
        at(rows - 1) = normalisedReal(referenceAt(rows - 1), at(rows - 1));
    for (int j = 1; j <= rows - 2; j += 2) {
        const ComplexBin bin = crossPower(referenceAt(j), referenceAt(j + 1), at(j), at(j + 1));
        const double scale = magnitude(bin);
        const double denominator = scale * scale + 0.0 * 0.0 + static_cast<double>(FLT_EPSILON);
        at(j) = static_cast<float>((bin.re * scale + bin.im * 0.0) / denominator);
        at(j + 1) = static_cast<float>((bin.im * scale - bin.re * 0.0) / denominator);
    }
}

QR9_KERNEL void binaryRow(const unsigned char* grey, int threshold, float* binary, int columns)
{
    for (int x = 0; x < columns; ++x)
        binary[x] = grey[x] > threshold ? 255.0F : 0.0F;
}

} // namespace

void binaryToFloat(const cv::Mat& image, int threshold, cv::Mat& binary)
{
    for (int row = 0; row < binary.rows; ++row) {
        float* to = binary.ptr<float>(row);
        const int filled = row < image.rows ? image.cols : 0;
        if (filled > 0)
            binaryRow(image.ptr<unsigned char>(row), threshold, to, filled);
        std::fill(to + filled, to + binary.cols, 0.0F);
    }
}

void toNormalisedCrossPower(const cv::Mat& reference, cv::Mat& spectrum)
{
    const bool lastColumnIsReal = spectrum.cols % 2 == 0;
    normaliseColumn(reference, spectrum, 0);
    if (lastColumnIsReal)
        normaliseColumn(reference, spectrum, spectrum.cols - 1);
    const int end = spectrum.cols - (lastColumnIsReal ? 1 : 0);
    for (int row = 0; row < spectrum.rows; ++row)
        normaliseRow(reference.ptr<float>(row), spectrum.ptr<float>(row), 1, end);
}

} // namespace spectrum_kernels

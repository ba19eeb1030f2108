#pragma once

#include <cstddef>

/// The focus measures on whole, packed 8-bit frames, each in one or two passes of integer arithmetic that
/// the compiler vectorises. Every sum is an exact integer and is finished by the library's own sequence of
/// floating point operations, so that the results have the bits of focus_literal. No state, any thread.
namespace focus_kernels {

/// neonTRILLOM over `count` pixels.
double meanAboveMultipleOfMean(const unsigned char* pixels, std::size_t count, double alpha);

/// varianceOfLaplacian of a frame of `width` x `height` pixels, both at least 1.
double varianceOfLaplacian(const unsigned char* pixels, int width, int height);

/// tenengrad with an aperture of 3 of a frame of `width` x `height` pixels, both at least 1.
double meanSquaredSobel(const unsigned char* pixels, int width, int height);

} // namespace focus_kernels

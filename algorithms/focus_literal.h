#pragma once

#include <opencv2/core.hpp>

/// The focus measures as plain sequences of library calls: the definition of every result. They serve
/// matrices that the kernels do not take (other types, parts of larger matrices, other apertures), and are
/// what the kernels are compared with, bit by bit. No state, any thread; the library's exceptions pass.
namespace focus_literal {

double neonTRILLOM(const cv::Mat& image, double alpha, int width, int height);
double varianceOfLaplacian(const cv::Mat& image);
double tenengrad(const cv::Mat& image, int ksize);

} // namespace focus_literal

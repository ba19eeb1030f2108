#pragma once

#include <opencv2/core.hpp>

#include <vector>

/// Brightness of the objects of a picture and of what lies between them. Pure arithmetic on pixels: any
/// thread, no state.
namespace intensity {

/// The outline of one object: all of its pixels, in the order of the walk around it, and the smallest circle
/// that holds them.
struct Object {
    std::vector<cv::Point> outline;
    cv::Point2f centre;
    float radius = 0.0F; ///< px
};
using Objects = std::vector<Object>;

/// Objects of `frame` (8 bits, one channel; may be empty): what Otsu's threshold sets apart after `offset`
/// grey values have been taken off and single noisy pixels removed. Outer outlines only. Empty when there are
/// fewer than 10 or more than 1000, which is no picture of cells.
Objects findObjects(const cv::Mat& frame, int offset);

/// Mean of the mean grey values of those objects whose circle is smaller than 1.25 times the mean one: larger
/// ones are clusters or dirt. 0.0 without objects.
double perObject(const cv::Mat& frame, const Objects& objects);

/// Sum of the grey values outside of the objects' circles, which get a margin of 3 px, divided by the area of
/// a whole frame of 1280 by 960. 0.0 without objects.
double background(const cv::Mat& frame, const Objects& objects);

} // namespace intensity

#pragma once

#include <opencv2/core.hpp>

#include <vector>

/// Finds the round dark marks of a target slide in a grey frame. Pixels in, positions out; no widget, no
/// device.
namespace targetmark {

using Contours = std::vector<std::vector<cv::Point>>;

/// The square around a search position in which a mark is searched, in pixels; the still image shows it.
constexpr int kSearchBefore = 20; ///< left edge before the position, and upper edge above it
constexpr int kSearchSize = 40;

/// The part of a frame in which a mark is searched: the square around `position`, less what would lie outside
/// the frame. Empty when the position is so far outside that nothing is left.
cv::Rect searchWindow(cv::Point position, cv::Size frame);

/// Outer contours of what is dark (grey value up to 95) in `window` of the CV_8UC1 frame `source`, in
/// coordinates of the window. The whole frame is filtered before the window is cut, so that a mark on the
/// edge of the window looks as it does inside; this takes some tens of ms at 1280 by 960.
Contours darkContours(const cv::Mat& source, const cv::Rect& window);

/// Centre in frame pixels, truncated, of the smallest circle around a contour that was found in `window`.
cv::Point center(const std::vector<cv::Point>& contour, const cv::Rect& window);

/// Draws a cross of 15 pixels to each side and its label into a CV_8UC3 picture in BGR order.
void drawPoint(cv::Mat& picture, cv::Point point, const char* label);

} // namespace targetmark

#pragma once

#include <opencv2/core.hpp>

/// Drawn pictures of 1280 by 960 with bright objects on a dark ground.
namespace pictures {

cv::Mat ground(int grey);

/// `count` square objects of `side` px in rows, of brightness `grey`, none touching another.
cv::Mat squares(int count, int side, int grey, int groundGrey);

/// `count` round cells at random places, of random size and brightness, with noise; the same for the same
/// seed. Some may touch.
cv::Mat cells(int count, unsigned seed);

} // namespace pictures

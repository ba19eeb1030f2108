#pragma once

#include "app/illumination_channels.h"

#include <opencv2/core.hpp>

/// The grey frame (8 bits) as a colour picture of its channel, red, green, blue in the order of an image
/// file: bright field is grey, GFP green, RFP red. A value that names no channel gives a grey picture, too.
cv::Mat channelPicture(const cv::Mat& frame, ILLUMINATION_type channel);

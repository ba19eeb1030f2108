#include "app/channel_picture.h"

#include <opencv2/imgproc.hpp>

cv::Mat channelPicture(const cv::Mat& frame, ILLUMINATION_type channel)
{
    const cv::Mat zero = cv::Mat::zeros(frame.size(), CV_8UC1);
    cv::Mat planes[] = { frame, frame, frame }; // blue, green, red
    if (channel == ILLUMINATION_GFP) {
        planes[0] = zero;
        planes[2] = zero;
    } else if (channel == ILLUMINATION_RFP) {
        planes[0] = zero;
        planes[1] = zero;
    }
    cv::Mat picture;
    cv::merge(planes, 3, picture);
    cv::cvtColor(picture, picture, cv::COLOR_BGR2RGB);
    return picture;
}

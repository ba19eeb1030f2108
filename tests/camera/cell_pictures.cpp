#include "tests/camera/cell_pictures.h"

#include <opencv2/imgproc.hpp>

cv::Mat pictures::ground(int grey)
{
    return { 960, 1280, CV_8UC1, cv::Scalar(grey) };
}

cv::Mat pictures::squares(int count, int side, int grey, int groundGrey)
{
    cv::Mat picture = ground(groundGrey);
    const int pitch = side + 4;
    const int columns = 1270 / pitch;
    for (int i = 0; i < count; ++i) {
        const cv::Rect square(5 + i % columns * pitch, 5 + i / columns * pitch, side, side);
        picture(square).setTo(cv::Scalar(grey));
    }
    return picture;
}

cv::Mat pictures::cells(int count, unsigned seed)
{
    cv::RNG random(seed);
    cv::Mat picture = ground(40);
    for (int i = 0; i < count; ++i) {
        const cv::Point centre(random.uniform(0, 1280), random.uniform(0, 960));
        cv::circle(picture, centre, random.uniform(5, 14), cv::Scalar(random.uniform(120, 250)), cv::FILLED);
    }
    cv::Mat noise(picture.size(), CV_8UC1);
    random.fill(noise, cv::RNG::UNIFORM, 0, 8);
    return picture + noise;
}

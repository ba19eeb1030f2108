#pragma once

/// Results of the Z slope calibration, between its two autofocus runs and its end. Heights in Z motor steps.
struct z_slope_cal_info {
    int pos_A1 = 0; ///< best focus at field A1
    int pos_B1 = 0; ///< best focus at field B1
    int slope = 0; ///< B1 minus A1
    float slope_per_mm = 0.0F; ///< steps per mm of X
    int cal_1ch_pos = 0;
    int cal_2ch_pos = 0;
    int cal_3ch_pos = 0;
    int cal_8ch_pos = 0;
    int cal_validation_pos = 0;
};

/// Which point the next autofocus result belongs to.
enum ZSlopeStage : int {
    Z_SLOPE_NONE = 0,
    Z_SLOPE_A1 = 1,
    Z_SLOPE_B1 = 2,
};

#pragma once

#include "app/styles.h"

enum ILLUMINATION_type : int {
    ILLUMINATION_BF = 0,
    ILLUMINATION_GFP = 1,
    ILLUMINATION_RFP = 2,
};

/// One illumination channel: its place on the filter wheel, its tint, its commands and its stored values.
/// The defaults are texts, since the settings file holds texts.
struct IlluminationChannel {
    ILLUMINATION_type type;
    int colorTable; ///< index of the live view's colour table
    const char* buttonStyle;
    const char* filterCommand;
    const char* offCommand;
    const char* group; ///< of the settings file
    const char* defaultGain; ///< with the Basler camera
    const char* defaultGainAR; ///< with the AR0134; null: the key "Gain" serves both cameras
    const char* defaultExposure; ///< ms
};

constexpr IlluminationChannel kIlluminationChannels[] = {
    { ILLUMINATION_BF, 0, styles::kChannelGrey, "$A#FILTER GO 1\n", "$A#LED OFF1\n", "Ch. BF", "0", nullptr,
        "35" },
    { ILLUMINATION_GFP, 2, styles::kChannelGreen, "$A#FILTER GO 2\n", "$A#LED OFF2\n", "Ch. GFP", "5", "2",
        "80" },
    { ILLUMINATION_RFP, 1, styles::kChannelRed, "$A#FILTER GO 3\n", "$A#LED OFF3\n", "Ch. RFP", "5", "2",
        "80" },
};

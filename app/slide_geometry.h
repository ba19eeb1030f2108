#pragma once

/// Slide types; the value is the index of `comboBox_SLIDE`.
enum SLIDE_type : int {
    SLIDE_1CH = 0,
    SLIDE_2CH = 1,
    SLIDE_3CH = 2,
    SLIDE_8CH = 3,
    SLIDE_REUSABLE = 4,
    SLIDE_VALIDATION = 5,
    SLIDE_PRISMA_MAX = 6,
};

/// What an X move under way is for; it tells the reply what to do.
enum SlideMotion : int {
    SLIDE_MOTION_NONE = 0,
    SLIDE_MOTION_INSERT = 1,
    SLIDE_MOTION_EJECT = 2,
};

/// Distance of two fields along X on every slide type, in motor steps.
constexpr int kFieldPitchX = 480;

/// Distance of the two channels of a 2-channel slide along X, from field A1 to field B1: in motor steps and,
/// for the slope of the carrier, in mm.
constexpr int kChannelPitchX2Ch = 20799;
constexpr double kChannelPitchMm2Ch = 39.0;

/// Which stored X start position a slide type uses.
enum class SlideStart { Channel1, Channel2, Channel3, Channel8, Prisma };

/// From which stored heights the Z target of an insert comes: reference, and an offset added or subtracted.
struct SlideHeight {
    const char* referenceKey; ///< group "Calibration"
    bool slope; ///< the slope of the carrier counts
    const char* offsetKey; ///< null: no offset
    const char* offsetDefault;
    int offsetSign;
};

/// The map, the channels and the heights of one slide type.
struct SlideGeometry {
    SLIDE_type type;
    int columns; ///< of the map, one for each channel
    int columnWidth; ///< pixels
    SlideStart start;
    int channelPitchX; ///< motor steps
    double channelPitchZ; ///< mm, for the slope; 0.0: channels cannot be chosen on the map
    int lastField; ///< index, at which the map's buttons end the run
    SlideHeight height;
};

/// The geometry of a slide type, or null for a number that is none.
const SlideGeometry* slideGeometry(int type);

/// The button that a field move turns off until the stage has arrived.
enum class FieldButton { Prev, Next };

/// How one press of PREV or NEXT moves along a channel.
struct FieldMove {
    int step; ///< +1 or -1, added to the field index
    int limit; ///< the press does nothing when the index stands at or beyond this, in the direction of the
               ///< step
    FieldButton disabled;
    int channelPitchX; ///< subtracted once for each channel
    int fieldPitchX; ///< added once for each field, signed
    bool homeBelowFirst; ///< index -1 is X = 0
};

/// The rule for a press of NEXT or PREV, or null for a slide type that has none.
const FieldMove* fieldMoveNext(int type, int channel);
const FieldMove* fieldMovePrev(int type, int channel);

/// True when the press does nothing at this field.
bool isFieldMoveBlocked(const FieldMove& move, int field);

/// X position of a field, in motor steps.
int fieldPositionX(const FieldMove& move, int start, int channel, int field);

/// X position of the first field of a channel, in motor steps.
int channelPositionX(const SlideGeometry& slide, int start, int channel);

/// True for runs whose field index falls from PREV to NEXT: the button states of the map are turned round.
bool isReversedRun(int type, int channel);

#include "app/slide_geometry.h"

#include "app/int_range.h"

#include <cstddef>
#include <cstdint>

namespace {

// The same of the other slides of several channels.
constexpr int kChannelPitchX3Ch = 12346;
constexpr double kChannelPitchMm3Ch = 23.15;
constexpr int kChannelPitchX8Ch = 4800;
constexpr double kChannelPitchMm8Ch = 9.0;

constexpr SlideHeight kHeight1Ch = { "Z ref 1ch", false, nullptr, nullptr, 0 };
constexpr SlideHeight kHeight2Ch = { "Z ref 2ch", true, nullptr, nullptr, 0 };
constexpr SlideHeight kHeight3Ch = { "Z ref 3ch", true, nullptr, nullptr, 0 };
constexpr SlideHeight kHeight8Ch = { "Z ref 8ch", true, nullptr, nullptr, 0 };
constexpr SlideHeight kHeightReusable = { "Z ref 2ch", true, "Reusable offset", "5676", +1 };
constexpr SlideHeight kHeightValidation = { "Z reference", true, "Validation offset", "1280", -1 };
constexpr SlideHeight kHeightPrismaMax = { "Z ref 2ch", true, "Prisma offset", "0", -1 };

constexpr SlideGeometry kSlides[] = {
    { SLIDE_1CH, 1, 400, SlideStart::Channel1, 0, 0.0, 46, kHeight1Ch },
    { SLIDE_2CH, 2, 200, SlideStart::Channel2, kChannelPitchX2Ch, kChannelPitchMm2Ch, 11, kHeight2Ch },
    { SLIDE_3CH, 3, 133, SlideStart::Channel3, kChannelPitchX3Ch, kChannelPitchMm3Ch, 11, kHeight3Ch },
    { SLIDE_8CH, 8, 50, SlideStart::Channel8, kChannelPitchX8Ch, kChannelPitchMm8Ch, 4, kHeight8Ch },
    { SLIDE_REUSABLE, 1, 200, SlideStart::Channel2, 0, 0.0, 11, kHeightReusable },
    { SLIDE_VALIDATION, 1, 200, SlideStart::Channel2, 0, 0.0, 11, kHeightValidation },
    { SLIDE_PRISMA_MAX, 1, 200, SlideStart::Prisma, 0, 0.0, 4, kHeightPrismaMax },
};

enum class Channel { Any, First, Further };

struct FieldMoveRow {
    SLIDE_type type;
    Channel channel;
    FieldMove move;
};

constexpr FieldButton kPrev = FieldButton::Prev;
constexpr FieldButton kNext = FieldButton::Next;
constexpr int kPitch = kFieldPitchX;

// A 2-channel slide is walked as a serpentine, out along channel 1 and back along channel 2; on a 3-channel
// slide NEXT always lowers the field index. Three rows of PREV raise it: there the button turned off is NEXT.
// The limit is the first index at which a press does nothing.
constexpr FieldMoveRow kMovesNext[] = {
    { SLIDE_1CH, Channel::Any, { +1, 46, kNext, 0, +kPitch, false } },
    { SLIDE_2CH, Channel::Further, { -1, 0, kNext, kChannelPitchX2Ch, +kPitch, false } },
    { SLIDE_2CH, Channel::First, { +1, 11, kNext, kChannelPitchX2Ch, -kPitch, false } },
    { SLIDE_3CH, Channel::Further, { -1, 0, kNext, kChannelPitchX3Ch, +kPitch, false } },
    { SLIDE_3CH, Channel::First, { -1, -1, kNext, 0, +kPitch, true } },
    { SLIDE_8CH, Channel::Any, { +1, 4, kNext, kChannelPitchX8Ch, -kPitch, false } },
    { SLIDE_REUSABLE, Channel::Any, { +1, 11, kNext, kChannelPitchX2Ch, -kPitch, false } },
    { SLIDE_VALIDATION, Channel::Any, { +1, 11, kNext, kChannelPitchX2Ch, -kPitch, false } },
    { SLIDE_PRISMA_MAX, Channel::Any, { +1, 4, kNext, 0, -kPitch, false } },
};

constexpr FieldMoveRow kMovesPrev[] = {
    { SLIDE_1CH, Channel::Any, { -1, -1, kPrev, 0, +kPitch, true } },
    { SLIDE_2CH, Channel::Further, { +1, 11, kNext, kChannelPitchX2Ch, +kPitch, false } },
    { SLIDE_2CH, Channel::First, { -1, -1, kPrev, kChannelPitchX2Ch, -kPitch, true } },
    { SLIDE_3CH, Channel::Any, { +1, 11, kNext, kChannelPitchX3Ch, +kPitch, false } },
    { SLIDE_8CH, Channel::Further, { -1, 0, kPrev, kChannelPitchX8Ch, -kPitch, false } },
    { SLIDE_8CH, Channel::First, { -1, -1, kPrev, kChannelPitchX8Ch, -kPitch, true } },
    { SLIDE_REUSABLE, Channel::Any, { -1, -1, kPrev, kChannelPitchX2Ch, -kPitch, true } },
    { SLIDE_VALIDATION, Channel::Any, { -1, -1, kPrev, kChannelPitchX2Ch, -kPitch, true } },
    { SLIDE_PRISMA_MAX, Channel::Any, { -1, -1, kPrev, 0, -kPitch, true } },
};

bool covers(Channel rule, int channel)
{
    return rule == Channel::Any || (rule == Channel::First) == (channel == 0);
}

template <std::size_t N> const FieldMove* findMove(const FieldMoveRow (&rows)[N], int type, int channel)
{
    for (const FieldMoveRow& row : rows) {
        if (row.type == type && covers(row.channel, channel))
            return &row.move;
    }
    return nullptr;
}

} // namespace

const SlideGeometry* slideGeometry(int type)
{
    for (const SlideGeometry& slide : kSlides) {
        if (slide.type == type)
            return &slide;
    }
    return nullptr;
}

const FieldMove* fieldMoveNext(int type, int channel)
{
    return findMove(kMovesNext, type, channel);
}

const FieldMove* fieldMovePrev(int type, int channel)
{
    return findMove(kMovesPrev, type, channel);
}

bool isFieldMoveBlocked(const FieldMove& move, int field)
{
    return move.step > 0 ? field >= move.limit : field <= move.limit;
}

int fieldPositionX(const FieldMove& move, int start, int channel, int field)
{
    if (move.homeBelowFirst && field == -1)
        return 0;
    const int distance = move.fieldPitchX * field - move.channelPitchX * channel;
    return withinInt(std::int64_t { start } + distance);
}

int channelPositionX(const SlideGeometry& slide, int start, int channel)
{
    const int distance = slide.channelPitchX * channel;
    return withinInt(std::int64_t { start } - distance);
}

bool isReversedRun(int type, int channel)
{
    return type == SLIDE_3CH || (type == SLIDE_2CH && channel == 1);
}

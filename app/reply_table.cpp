#include "app/reply_table.h"

#include <QStringList>

namespace {

// The three rows without an ending stand last: they catch the echoes of settings.
constexpr ReplyRow kReplies[] = {
    { "$OK#A#VER", PROTOCOL_MAIN, 0, ValueCut::Version },
    { "$OK#A#LED", PROTOCOL_MAIN, FUNCTION_LED, ValueCut::LedChannel },
    { "$OK#X#STAGE ORIGIN", PROTOCOL_STAGE_X, FUNCTION_ORIGIN, ValueCut::None },
    { "$OK#X#STAGE INSERT", PROTOCOL_STAGE_X, FUNCTION_INSERT, ValueCut::None },
    { "$OK#X#STAGE EJECT", PROTOCOL_STAGE_X, FUNCTION_EJECT, ValueCut::None },
    { "$OK#X#STAGE RUN", PROTOCOL_STAGE_X, FUNCTION_RUN, ValueCut::Hash },
    { "$OK#X#STAGE ABS", PROTOCOL_STAGE_X, FUNCTION_ABS, ValueCut::Blank },
    { "$OK#X#STAGE POS", PROTOCOL_STAGE_X, FUNCTION_POS, ValueCut::Hash },
    { "$OK#Z#STAGE ORIGIN", PROTOCOL_STAGE_Z, FUNCTION_ORIGIN, ValueCut::None },
    { "$OK#Z#STAGE RUN", PROTOCOL_STAGE_Z, FUNCTION_RUN, ValueCut::Hash },
    { "$OK#Z#STAGE ABS", PROTOCOL_STAGE_Z, FUNCTION_ABS, ValueCut::Blank },
    { "$OK#Z#STAGE POS", PROTOCOL_STAGE_Z, FUNCTION_POS, ValueCut::Hash },
    { "$OK#Z#STAGE BOTTOM", PROTOCOL_STAGE_Z, FUNCTION_BOTTOM, ValueCut::None },
    { "$OK#Z#STAGE TOP", PROTOCOL_STAGE_Z, FUNCTION_TOP, ValueCut::None },
    { "$OK#A#FILTER ORIGIN", PROTOCOL_FILTER, FUNCTION_ORIGIN, ValueCut::None },
    { "$OK#A#FILTER GO", PROTOCOL_FILTER, FUNCTION_GO, ValueCut::None },
    { "$OK#A#FILTER READ1", PROTOCOL_FILTER, FUNCTION_READ, ValueCut::Filter1 },
    { "$OK#A#FILTER READ2", PROTOCOL_FILTER, FUNCTION_READ, ValueCut::Filter2 },
    { "$OK#A#FILTER READ3", PROTOCOL_FILTER, FUNCTION_READ, ValueCut::Filter3 },
    { "$OK#X#STAGE", PROTOCOL_STAGE_X, 0, ValueCut::DeviceOnly },
    { "$OK#Z#STAGE", PROTOCOL_STAGE_Z, 0, ValueCut::DeviceOnly },
    { "$OK#A#FILTER", PROTOCOL_FILTER, 0, ValueCut::DeviceOnly },
};

/// Piece `index` of the frame split at "#"; empty when the frame is shorter.
QString hashPiece(const QString& frame, int index)
{
    return frame.split("#").value(index);
}

QString upToReturn(const QString& piece)
{
    return piece.split("\r").first();
}

std::int32_t numberBehindHash(const QString& frame)
{
    return upToReturn(hashPiece(frame, 3)).toInt();
}

std::int32_t numberBehindBlank(const QString& frame)
{
    return upToReturn(hashPiece(frame, 2).split(" ").value(2)).toInt();
}

std::int32_t ledChannel(const QString& frame)
{
    return hashPiece(frame, 2).split(" ").value(1).right(1).toInt();
}

} // namespace

const ReplyRow* findReply(const QString& frame)
{
    for (const ReplyRow& row : kReplies) {
        if (frame.contains(row.text))
            return &row;
    }
    return nullptr;
}

bool fillProtocolInfo(const ReplyRow& row, const QString& frame, protocol_Controller_info& info)
{
    info.device = row.device;
    if (row.cut == ValueCut::Version || row.cut == ValueCut::DeviceOnly)
        return false;

    info.function = row.function;
    switch (row.cut) {
    case ValueCut::LedChannel:
        info.value = ledChannel(frame);
        break;
    case ValueCut::Hash:
        info.value = numberBehindHash(frame);
        break;
    case ValueCut::Blank:
        info.value = numberBehindBlank(frame);
        break;
    case ValueCut::Filter1:
    case ValueCut::Filter2:
    case ValueCut::Filter3:
        info.value = static_cast<std::int32_t>(row.cut) - static_cast<std::int32_t>(ValueCut::Filter1) + 1;
        info.value2 = numberBehindHash(frame);
        break;
    case ValueCut::None:
    case ValueCut::Version:
    case ValueCut::DeviceOnly:
        break;
    }
    return true;
}

QString versionText(const QString& frame)
{
    return upToReturn(hashPiece(frame, 3));
}

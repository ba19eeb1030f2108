#pragma once

#include "app/protocol_info.h"

#include <QString>

/// How a reply carries its value. Pieces of a split count from 0; a number that cannot be read is 0.
enum class ValueCut {
    None, ///< no value: the fields keep what an earlier reply put there
    Version, ///< the firmware text behind the third "#"; no action belongs to it
    LedChannel, ///< last character of the LED word: "BRT2" gives 2
    Hash, ///< behind the third "#": "$OK#Z#STAGE POS#1234"
    Blank, ///< behind the second blank: "$OK#Z#STAGE ABS 1234"
    Filter1, ///< correction of position 1 behind the third "#"
    Filter2,
    Filter3,
    DeviceOnly, ///< an echo without an action: it names the device and is otherwise unknown
};

/// One reply that the window understands.
struct ReplyRow {
    const char* text; ///< searched anywhere in the frame, case-sensitive
    std::int32_t device;
    std::int32_t function; ///< not used by Version and DeviceOnly
    ValueCut cut;
};

/// The row of a frame, or null for an unknown frame. Rows are tested in the order of the table.
const ReplyRow* findReply(const QString& frame);

/// Overwrites the fields of `info` that the frame carries. False when no action belongs to the frame.
bool fillProtocolInfo(const ReplyRow& row, const QString& frame, protocol_Controller_info& info);

/// The firmware text of a version reply.
QString versionText(const QString& frame);

#pragma once

#include "app/protocol_info.h"

#include <QString>

#include <functional>

/// Walks through the replies of one text, in their order. A frame begins at a "$"; what stands before the
/// first one is none. `showVersion` is called for each version reply with its firmware text; `act` for each
/// frame that asks for an action, when `info` has taken over the fields that the frame carries.
///
/// An unknown frame behind a recognised one, and an echo that names its device alone, repeat the action of
/// the recognised one with `info` as it then stands. `info` may be written by the calls: a reply to the next
/// command can arrive while the action of this one still waits.
void walkReplies(const QString& text, protocol_Controller_info& info,
    const std::function<void(const QString& version)>& showVersion, const std::function<void()>& act);

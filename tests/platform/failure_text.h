#pragma once

#include <pylon/PylonIncludes.h>

#include <QString>

/// The text of the library's exception that `call` throws, or an empty one.
template <typename Call> QString failureOf(Call&& call)
{
    try {
        call();
    } catch (const GenICam::GenericException& exception) {
        return exception.GetDescription();
    }
    return {};
}

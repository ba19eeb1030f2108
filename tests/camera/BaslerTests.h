#pragma once

#include <pylon/PylonIncludes.h>

#include <QObject>

/// What the test classes of the Basler side have in common: the camera library, for as long as they run.
class BaslerTests : public QObject {
    Q_OBJECT

protected slots:
    void initTestCase();
    void cleanupTestCase();
};

/// Whether the library throws.
template <typename Call> bool throws(Call&& call)
{
    try {
        call();
    } catch (const GenICam::GenericException&) {
        return true;
    }
    return false;
}

#include "tests/camera/BaslerTests.h"

void BaslerTests::initTestCase()
{
    Pylon::PylonInitialize();
}

void BaslerTests::cleanupTestCase()
{
    Pylon::PylonTerminate();
}

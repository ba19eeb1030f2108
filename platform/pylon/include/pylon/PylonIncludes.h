#pragma once

#include <pylon/Device.h>
#include <pylon/EventHandlers.h>
#include <pylon/GenApi.h>
#include <pylon/GenICam.h>
#include <pylon/GrabResult.h>
#include <pylon/InstantCamera.h>

// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Everything that the library offers, in one header.

#include "FrameTimeStamp.h"
#include "IBlockingCamera.h"
#include "IBlockingCameraMonitor.h"
#include "ICamera.h"
#include "ICameraControl.h"
#include "ICameraControlBaseMenu.h"
#include "ICameraControlBitMask.h"
#include "ICameraControlBoolean.h"
#include "ICameraControlButton.h"
#include "ICameraControlInt64Menu.h"
#include "ICameraControlNumeric.h"
#include "ICameraControlString.h"
#include "ICameraControlStringMenu.h"
#include "ICameraEvent.h"
#include "ICameraFactory.h"
#include "ICameraMonitor.h"
#include "IContinuousCameraMonitor.h"
#include "IDevice.h"
#include "IDeviceList.h"
#include "IFrame.h"
#include "IFramePeriod.h"
#include "IFrameSize.h"
#include "IImageFormat.h"
#include "UsbSpeed.h"

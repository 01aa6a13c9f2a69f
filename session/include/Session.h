// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Everything that the session layer offers, in one header.

#include "session/Bytes.h"
#include "session/Camera.h"
#include "session/Control.h"
#include "session/ControlValue.h"
#include "session/Error.h"
#include "session/Events.h"
#include "session/Found.h"
#include "session/Frame.h"
#include "session/Picture.h"
#include "session/Profile.h"
#include "session/Selection.h"
#include "session/Statistics.h"
#include "session/Stream.h"
#include "session/StreamOptions.h"

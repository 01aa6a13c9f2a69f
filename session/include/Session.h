// SPDX-License-Identifier: MIT
#pragma once

/// @file
/// Everything that the session layer offers, in one header.

/**
 * @namespace ImageAcquisition::Session
 * @brief The session layer: what programs write on top of the interfaces, written once.
 *
 * The page @ref md_docs_session "The session layer" (docs/session.md) tells which layer one wants,
 * and shows this one by example. It begins with Camera.
 */

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

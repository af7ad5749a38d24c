#pragma once

/// @file
/// Includes every header of the kit.

/// @namespace ZIRK::kit
/// Helpers that many programs need: shapes, text boxes, PNG files, fonts by name. The kit is a
/// separate library, libZIRKKit.so. It uses only the public interface, so it works with every
/// backend.

#include <zirk/kit/color.h>
#include <zirk/kit/machinefonts.h>
#include <zirk/kit/paint.h>
#include <zirk/kit/pictures.h>
#include <zirk/kit/scopes.h>
#include <zirk/kit/shapes.h>
#include <zirk/kit/text.h>
#include <zirk/kit/textbox.h>

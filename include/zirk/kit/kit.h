#pragma once

/// @file
/// All that libZIRKKit.so has.

/// @namespace ZIRK::kit
/// What many programs would otherwise write again. It is a library of its own, libZIRKKit.so, built
/// on the interface that applications have, so it works with every backend.

#include <zirk/kit/color.h>
#include <zirk/kit/machinefonts.h>
#include <zirk/kit/paint.h>
#include <zirk/kit/pictures.h>
#include <zirk/kit/scopes.h>
#include <zirk/kit/shapes.h>
#include <zirk/kit/text.h>
#include <zirk/kit/textbox.h>

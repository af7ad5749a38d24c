#pragma once

/// @file
/// Everything that an application may name. Plug-ins include <zirk/backend.h>.

/// @namespace ZIRK
/// Every public name except macros.

#include <zirk/backendtable.h>
#include <zirk/glyph.h>
#include <zirk/graphicsimplloader.h>
#include <zirk/layerdescription.h>
#include <zirk/utf8.h>
#include <zirk/vubitmap.h>
#include <zirk/vubitmapinfo.h>
#include <zirk/vucolor.h>
#include <zirk/vucompositor.h>
#include <zirk/vuenums.h>
#include <zirk/vufont.h>
#include <zirk/vufontatlas.h>
#include <zirk/vufontregistry.h>
#include <zirk/vugraphics.h>
#include <zirk/vumatrix2d.h>
#include <zirk/vuperfcounter.h>
#include <zirk/vupoint.h>
#include <zirk/vurect.h>
#include <zirk/vurect2d.h>
#include <zirk/vuscreendescription.h>
#include <zirk/vusyslog.h>
#include <zirk/vutransform.h>
#include <zirk/vuvector2d.h>

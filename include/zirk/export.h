#pragma once

/// @file
/// What a shared library lets others see.

/// Marks what libZIRK.so exports; everything else is compiled with hidden visibility.
#define ZIRK_API __attribute__((visibility("default")))

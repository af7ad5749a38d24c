#pragma once

/// @file
/// What a shared library lets others see.

/// Marks what libZIRK.so exports; everything else is compiled with hidden visibility.
#define ZIRK_API __attribute__((visibility("default")))

/// Marks what a class that is exported keeps to itself.
#define ZIRK_LOCAL __attribute__((visibility("hidden")))

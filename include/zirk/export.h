#pragma once

/// @file
/// The symbols that a shared library exports.

/// Marks what libZIRK.so exports; everything else is compiled with hidden visibility.
#define ZIRK_API __attribute__((visibility("default")))

/// Marks a member of an exported class that is not exported.
#define ZIRK_LOCAL __attribute__((visibility("hidden")))

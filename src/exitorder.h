#pragma once

/// Marks a static object that must outlive the library's other static objects when the process
/// ends, wherever the linker puts its file: it is constructed before them, so destroyed after.
///
/// The loader comes last of all, since it closes the plug-ins.
#define ZIRK_DESTROYED_LAST __attribute__((init_priority(101)))
#define ZIRK_DESTROYED_BEFORE_LOADER __attribute__((init_priority(102)))

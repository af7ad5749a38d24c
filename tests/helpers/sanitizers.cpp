// Options of the sanitizers, which call these functions. Without a sanitizer nothing does.

#define ZIRK_SANITIZER_HOOK extern "C" __attribute__((visibility("default")))

ZIRK_SANITIZER_HOOK const char* __asan_default_options();
ZIRK_SANITIZER_HOOK const char* __lsan_default_suppressions();
ZIRK_SANITIZER_HOOK const char* __tsan_default_suppressions();

/// The address sanitizer guesses where plug-ins keep thread-local storage. Where it is wrong, its
/// search for leaks crashes.
const char* __asan_default_options() {
  return "intercept_tls_get_addr=0";
}

/// Leaks of other libraries: OpenGL's driver, and SDL's connection to D-Bus. DirectFB loses what it
/// reads at its start, what it keeps for each thread that draws, and its list of listeners; a
/// surface of it that is forgotten still shows, by the object that owns it. fontconfig loses the
/// name of a configuration that names folders relative to it.
const char* __lsan_default_suppressions() {
  return "leak:_dri.so\nleak:libEGL\nleak:libGL\nleak:libLLVM\nleak:libgallium\nleak:libSDL2\n"
         "leak:libdbus-1\n"
         "leak:libfontconfig\nleak:libdirectfb-1.7\nleak:libfusion-1.7\nleak:direct_thread_self\n";
}

/// DirectFB takes its own locks in changing order, and destroys them while they are held. The
/// library calls it from one thread at a time, which the sanitizer still checks. OpenGL's driver
/// draws by threads of its own, and keeps them apart by atomic operations that the sanitizer does
/// not see.
const char* __tsan_default_suppressions() {
  return "called_from_lib:libdirect-1.7.so\n"
         "called_from_lib:libdirectfb-1.7.so\n"
         "called_from_lib:libdirectfb_dummy.so\n"
         "called_from_lib:libfusion-1.7.so\n"
         "race:_dri.so\n"
         "race:libgallium\n";
}

// Options of the sanitizers, which look for these functions; without one nobody calls them.

#define ZIRK_SANITIZER_HOOK extern "C" __attribute__((visibility("default")))

ZIRK_SANITIZER_HOOK const char* __asan_default_options();
ZIRK_SANITIZER_HOOK const char* __lsan_default_suppressions();
ZIRK_SANITIZER_HOOK const char* __tsan_default_suppressions();

/// The address sanitizer guesses where plug-ins keep the storage of threads, and where it guesses
/// wrong its search for leaks crashes.
const char* __asan_default_options() {
  return "intercept_tls_get_addr=0";
}

/// What OpenGL's driver never frees is not ours, nor what SDL's connection to D-Bus loses. Nor is
/// what DirectFB reads at its start and loses, what it keeps for each thread that draws, and its
/// list of listeners; surfaces of it that are forgotten show by the objects that own them.
/// fontconfig loses the name of a configuration that names folders relative to it.
const char* __lsan_default_suppressions() {
  return "leak:_dri.so\nleak:libEGL\nleak:libGL\nleak:libLLVM\nleak:libgallium\nleak:libSDL2\n"
         "leak:libdbus-1\n"
         "leak:libfontconfig\nleak:libdirectfb-1.7\nleak:libfusion-1.7\nleak:direct_thread_self\n";
}

/// DirectFB takes its own locks in changing order, and destroys them while they are held. We call
/// it from one thread at a time, which is still looked at. OpenGL's driver draws by threads that it
/// keeps apart by atomic operations of its own, which the sanitizer does not see.
const char* __tsan_default_suppressions() {
  return "called_from_lib:libdirect-1.7.so\n"
         "called_from_lib:libdirectfb-1.7.so\n"
         "called_from_lib:libdirectfb_dummy.so\n"
         "called_from_lib:libfusion-1.7.so\n"
         "race:_dri.so\n"
         "race:libgallium\n";
}

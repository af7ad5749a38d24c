// Options of the sanitizers, which look for this function; without one nobody calls it.

extern "C" __attribute__((visibility("default"))) const char* __asan_default_options();

/// The address sanitizer guesses where plug-ins keep the storage of threads, and where it guesses
/// wrong its search for leaks crashes.
const char* __asan_default_options() {
  return "intercept_tls_get_addr=0";
}

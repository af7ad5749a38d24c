// The leak detector knows what is OpenGL's driver's only while the driver stays loaded.

#ifdef __SANITIZE_ADDRESS__

extern "C" __attribute__((visibility("default"))) int dlclose(void*);

extern "C" int dlclose(void*) {
  return 0;
}

#endif

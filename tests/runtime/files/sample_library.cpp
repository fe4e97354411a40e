/// What a program that opens libraries finds in this one.
extern "C" __attribute__((visibility("default"))) int rasterkit_sample_double(int number) {
  return 2 * number;
}

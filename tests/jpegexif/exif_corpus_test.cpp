#include <gtest/gtest.h>
TEST(X, Y) {}

#include <new>
#include <stdexcept>

#include <gtest/gtest.h>

#include <rasterkit/runtime/error_class.h>
#include <rasterkit/runtime/errors.h>

namespace {
struct LocalError : std::exception {};
}  // namespace

struct GlobalError : std::exception {};

namespace rasterkit::test {
namespace {

TEST(ErrorClassName, Should_BeTheClassWithoutItsNamespaces) {
  EXPECT_EQ(ErrorClassName(FormatError("x")), "FormatError");
  EXPECT_EQ(ErrorClassName(std::bad_alloc()), "bad_alloc");
  EXPECT_EQ(ErrorClassName(std::runtime_error("x")), "runtime_error");
  EXPECT_EQ(ErrorClassName(GlobalError()), "GlobalError");
  EXPECT_EQ(ErrorClassName(LocalError()), "LocalError");
}

TEST(ErrorClassName, Should_BeTheClassThatWasThrown_NotTheOneThatWasCaught) {
  try {
    throw LimitError("x");
  } catch (const std::exception& error) {
    EXPECT_EQ(ErrorClassName(error), "LimitError");
  }
}

}  // namespace
}  // namespace rasterkit::test

#include "context/entrypoints.h"

#include <memory>
#include <new>

#include "helpers/logged.h"

namespace ZIRK::tests {
namespace {

using backends::CreateForLibrary;
using helpers::LogsOneError;
using Graphics = std::unique_ptr<VuGraphicsImpl>;

TEST(EntryPoints, LetNoExceptionOut) {
  EXPECT_TRUE(LogsOneError("the backend has no memory to start with", [] {
    EXPECT_FALSE(CreateForLibrary<VuGraphicsImpl>([]() -> Graphics { throw std::bad_alloc(); }));
  }));
  EXPECT_TRUE(LogsOneError("the backend cannot be started", [] {
    EXPECT_FALSE(CreateForLibrary<VuGraphicsImpl>([]() -> Graphics { throw 1; }));
  }));
}

}  // namespace
}  // namespace ZIRK::tests

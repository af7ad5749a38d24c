#include "context/entrypoints.h"

#include <memory>
#include <new>

#include "helpers/logged.h"
#include "stub/stubgraphics.h"

namespace ZIRK::tests {
namespace {

using backends::CreateForLibrary;
using helpers::LoggedAt;
using helpers::LogsOneError;
using Graphics = std::unique_ptr<VuGraphicsImpl>;

TEST(EntryPoints, GiveWhatWasMadeOrNull) {
  const auto make = [] { return std::make_unique<backends::StubGraphics>(); };
  const Graphics made(static_cast<VuGraphicsImpl*>(CreateForLibrary<VuGraphicsImpl>(make)));
  EXPECT_EQ(made->GetGraphicsType(), 4);
  EXPECT_EQ(LoggedAt(7,
                     [] {
                       EXPECT_FALSE(
                           CreateForLibrary<VuGraphicsImpl>([]() -> Graphics { return nullptr; }));
                     }),
            "");
}

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

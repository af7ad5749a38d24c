#include <gtest/gtest.h>
#include <zirk/backend.h>

#include <atomic>
#include <future>
#include <thread>

#include "plugins/layerdescription.h"
#include "support/logged.h"
#include "support/plugins.h"

namespace ZIRK {
namespace {

using support::LoggedAt;

class Compositor : public testing::Test {
 protected:
  void SetUp() override {
    LogLevel = 2;
    support::InstallAnnouncingCompositor();
  }
  void TearDown() override {
    LoggedAt(2, [] { VuCompositor::Enable(false); });
  }

 private:
  support::Tunables restored_;
};

TEST_F(Compositor, DoesNothingUntilEnabled) {
  EXPECT_FALSE(VuCompositor::IsEnabled());
  EXPECT_EQ(VuCompositorImpl::GetInstance(), nullptr);
  EXPECT_EQ(VuCompositor::GetVirtualLayerCount(), 0);
  LayerDescription layer{7, nullptr, nullptr, nullptr};
  int count = 5;
  VuCompositor::GetConfiguration(&layer, count);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(layer.id, 7);
  VuCompositor::SetConfiguration(&layer, 1);
  VuCompositor::EnableLayer(1, true);
  EXPECT_FALSE(VuCompositor::IsEnabled());
}

TEST_F(Compositor, EnablingTwiceCreatesOne) {
  EXPECT_EQ(LoggedAt(2,
                     [] {
                       VuCompositor::Enable(true);
                       VuCompositor::Enable(true);
                     }),
            "CreateVuCompositor 0\n");
  EXPECT_TRUE(VuCompositor::IsEnabled());
  EXPECT_EQ(LoggedAt(2,
                     [] {
                       VuCompositor::Enable(false);
                       VuCompositor::Enable(false);
                     }),
            "compositor deleted\n");
  EXPECT_FALSE(VuCompositor::IsEnabled());
}

TEST_F(Compositor, Forwards) {
  LoggedAt(2, [] { VuCompositor::Enable(true); });
  const LayerDescription layers[] = {{3, nullptr, nullptr, nullptr},
                                     {4, nullptr, nullptr, nullptr}};
  VuCompositor::SetConfiguration(layers, 2);
  EXPECT_EQ(VuCompositor::GetVirtualLayerCount(), 2);
  LayerDescription layer{};
  int count = 0;
  VuCompositor::GetConfiguration(&layer, count);
  EXPECT_EQ(layer.id, 4);
  EXPECT_EQ(count, 2);
  EXPECT_EQ(LoggedAt(2, [] { VuCompositor::EnableLayer(-3, true); }), "EnableLayer -3 1\n");
}

TEST_F(Compositor, DisablingWaitsForCallsInProgress) {
  struct Meeting {
    std::promise<void> entered;
    std::promise<void> leave;
  } meeting;
  std::atomic<bool> deleted{false};
  LoggedAt(2, [&] {
    VuCompositor::Enable(true);
    std::thread caller([&] {
      const LayerDescription layer{1,
                                   [](void* argument) {
                                     auto& m = *static_cast<Meeting*>(argument);
                                     m.entered.set_value();
                                     m.leave.get_future().wait();
                                   },
                                   &meeting, &deleted};
      VuCompositor::SetConfiguration(&layer, 1);
    });
    meeting.entered.get_future().wait();
    // Neither of these may wait for the call.
    EXPECT_TRUE(VuCompositor::IsEnabled());
    VuCompositor::Enable(false);
    EXPECT_FALSE(VuCompositor::IsEnabled());
    EXPECT_FALSE(deleted);
    meeting.leave.set_value();
    caller.join();
    EXPECT_TRUE(deleted);
  });
}

TEST(CompositorDeathTest, NeedsThePlugin) {
  GraphicsImplLoader::GetInstance()->SetupGfxImpl("GLCompositor", support::Plugin("Missing"),
                                                  {0, 0}, false);
  EXPECT_DEATH(VuCompositor::Enable(true),
               "src/vucompositor.cpp:70: static void ZIRK::VuCompositor::Enable\\(bool\\): "
               "Assertion `instance' failed");
}

}  // namespace
}  // namespace ZIRK

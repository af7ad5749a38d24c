#include <gtest/gtest.h>
#include <zirk/backend.h>

#include <future>
#include <thread>
#include <tuple>

#include "helpers/logged.h"
#include "helpers/plugins.h"
#include "helpers/threads.h"

namespace ZIRK {

namespace {

/// A layer as the test plug-in has it, whose SetConfiguration calls the function.
struct TestLayer {
  void (*inside)();
};

TEST(Compositor, DoesNothingUntilEnabled) {
  EXPECT_EQ(VuCompositorImpl::GetInstance(), nullptr);
  EXPECT_EQ(VuCompositor::GetVirtualLayerCount(), 0);
  int count = 5;
  VuCompositor::GetConfiguration(nullptr, count);
  EXPECT_EQ(count, 0);
  VuCompositor::SetConfiguration(nullptr, 1);
  VuCompositor::EnableLayer(1, true);
  EXPECT_FALSE(VuCompositor::IsEnabled());
}

TEST(Compositor, EnabledTwiceIsOneThatForwards) {
  helpers::Install("GLCompositor", "Independent", "VuCompositor");
  const auto run = [] {
    VuCompositor::Enable(true);
    VuCompositor::Enable(true);
    VuCompositor::SetConfiguration(nullptr, 3);
    EXPECT_EQ(VuCompositor::GetVirtualLayerCount(), 6);
    int count = 0;
    VuCompositor::GetConfiguration(nullptr, count);
    EXPECT_EQ(count, 3);
    VuCompositor::EnableLayer(-3, true);
    VuCompositor::Enable(false);
    VuCompositor::Enable(false);
  };
  EXPECT_EQ(helpers::LoggedAt(2, run),
            "CreateVuCompositor 0\nEnableLayer -3 1\ncompositor destroyed\n");
}

TEST(Compositor, DisablingWaitsForCallsInProgress) {
  helpers::Install("GLCompositor", "Independent", "VuCompositor");
  static std::promise<void> entered, leave;
  entered = {};
  leave = {};
  const TestLayer layer{[] {
    entered.set_value();
    leave.get_future().wait();
    fputs("leaving\n", stderr);
  }};
  const auto run = [&] {
    VuCompositor::Enable(true);
    std::thread caller([&] {
      VuCompositor::SetConfiguration(reinterpret_cast<const LayerDescription*>(&layer), 1);
    });
    entered.get_future().wait();
    // Neither of these may wait for the call.
    EXPECT_TRUE(VuCompositor::IsEnabled());
    VuCompositor::Enable(false);
    EXPECT_FALSE(VuCompositor::IsEnabled());
    leave.set_value();
    caller.join();
  };
  EXPECT_EQ(helpers::LoggedAt(2, run), "CreateVuCompositor 0\nleaving\ncompositor destroyed\n");
}

TEST(Compositor, SanitizedComesAndGoesWhileItIsAskedFor) {
  helpers::Install("GLCompositor", "Independent", "VuCompositor");
  int now = 0;
  const auto use = [&now](bool asks) {
    if (!asks)
      VuCompositor::Enable(now % 2);
    else if (now % 4 < 2)
      std::ignore = VuCompositor::IsEnabled();
    else
      std::ignore = VuCompositor::GetVirtualLayerCount();
  };
  helpers::LoggedAt(2, [&] {
    helpers::InRounds(
        20, [&now](int round) { now = round; }, use);
  });
}

TEST(CompositorDeathTest, NeedsThePlugin) {
  helpers::Install("GLCompositor", "Missing", "VuCompositor");
  EXPECT_DEATH(VuCompositor::Enable(true),
               "src/vucompositor.cpp:70: static void ZIRK::VuCompositor::Enable\\(bool\\): "
               "Assertion `instance' failed");
}

}  // namespace
}  // namespace ZIRK

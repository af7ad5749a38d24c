#include "directfb/start.h"

#include <zirk/impl/log.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <string_view>
#include <thread>
#include <type_traits>

#include "directfb/trialstart.h"

namespace ZIRK::backends {

namespace {

std::mutex turn;
static_assert(std::is_trivially_destructible_v<std::mutex>);

constexpr std::chrono::milliseconds kLastFrame{100};

IDirectFB* running = nullptr;
bool ended = false;

/// Whether `DFBARGS` sets `option`, one way or the other.
bool UserSets(std::string_view option) {
  const char* const args = std::getenv("DFBARGS");
  for (std::string_view rest = args ? args : ""; !rest.empty();) {
    std::string_view word = rest.substr(0, rest.find(','));
    rest.remove_prefix(std::min(word.size() + 1, rest.size()));
    if (word.substr(0, 3) == "no-") word.remove_prefix(3);
    if (word.substr(0, word.find('=')) == option) return true;
  }
  return false;
}

}  // namespace

bool HasDirectFbEnded() {
  return ended;
}

std::mutex& DirectFbTurn() {
  return turn;
}

DFBResult CreateDirectFb(IDirectFB** directFb) {
  // Without arguments of ours DirectFB would take those of the process.
  char name[] = "zirk";
  char* arguments[] = {name, nullptr};
  char** argv = arguments;
  int argc = 1;
  const DFBResult ready = DirectFBInit(&argc, &argv);
  if (ready != DFB_OK) return ready;
  constexpr struct {
    const char* name;
    const char* setting;
  } kOptions[] = {{"quiet", "quiet"},
                  {"banner", "no-banner"},
                  {"sighandler", "no-sighandler"},
                  {"core-sighandler", "no-core-sighandler"},
                  // Signals are the application's threads' to handle.
                  {"thread-block-signals", "thread-block-signals"},
                  // It would end DirectFB before the last surfaces are deleted.
                  {"deinit-check", "no-deinit-check"}};
  for (const auto& option : kOptions)
    if (!UserSets(option.name)) DirectFBSetOption(option.setting, nullptr);
  return DirectFBCreate(directFb);
}

IDirectFB* StartDirectFb() {
  const std::lock_guard lock(turn);
  if (running) return running;
  DFBResult result = TryToStartDirectFb(UserSets("quiet"));
  if (result == DFB_OK) result = CreateDirectFb(&running);
  if (result == DFB_OK) {
    // Comes before the end of whatever has been set up until now.
    std::atexit([] {
      const std::lock_guard last(turn);
      ended = true;
      // DirectFB shows a frame some time after it was told to, on a thread of its own, and then
      // reads what it has freed by the end of the process. There is nothing to wait for but time.
      std::this_thread::sleep_for(kLastFrame);
    });
    return running;
  }
  running = nullptr;
  ZIRK_LOG_ERROR("DirectFB cannot be started: %s",
                 result == DFB_DEAD ? "it breaks off" : DirectFBErrorString(result));
  return nullptr;
}

void WaitForDirectFb() {
  const std::lock_guard lock(turn);
  if (running && !ended) running->WaitIdle(running);
}

}  // namespace ZIRK::backends

#include <zirk/zirk.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands.h"
#include "librarylog.h"
#include "machinefont.h"
#include "plugins.h"
#include "screens.h"
#include "support/workloads.h"

namespace ZIRK::zirkinfo {

namespace {

using support::kWorkloadCount, support::kWorkloads, support::Stage, support::Workload;

constexpr int kWidth = 640, kHeight = 480;

/// The rates of one backend in all workloads, per second; nothing for a workload that needs a font.
struct Result {
  std::string name;
  int width, height;
  std::string shownBy;
  std::array<std::optional<double>, kWorkloadCount> rates;
};

double Measure(const Workload& workload, Stage& stage, double seconds) {
  using Clock = std::chrono::steady_clock;
  workload.draw(stage);  // The first one makes textures, glyphs and shaders.
  double done = 0, taken = 0;
  const Clock::time_point start = Clock::now();
  do {
    done += workload.draw(stage);
    taken = std::chrono::duration<double>(Clock::now() - start).count();
  } while (taken < seconds);
  return done / taken;
}

/// Returns nothing for a backend that does not open or has no screen.
std::optional<Result> MeasureBackend(const std::string& name, const std::string& fontFile,
                                     double seconds) {
  const LibraryLog log;
  const std::unique_ptr<VuGraphics> graphics = OpenBackend(name);
  if (!graphics) return std::nullopt;
  const std::unique_ptr<VuBitmap> screen = OpenScreen(*graphics, kWidth, kHeight);
  if (!screen) return std::nullopt;
  Stage stage = support::MakeStage(*graphics, *screen, fontFile);
  if (!stage.sprite) return std::nullopt;
  const VuRect bounds = screen->GetBounds();
  Result result{name, bounds.width, bounds.height, log.ShownBy(), {}};
  for (int i = 0; i < kWorkloadCount; ++i)
    if (stage.font || !kWorkloads[i].needsFont)
      result.rates[static_cast<size_t>(i)] = Measure(kWorkloads[i], stage, seconds);
  return result;
}

void PrintTable(const std::vector<Result>& results) {
  std::printf("%-12s", "");
  for (const Workload& workload : kWorkloads) std::printf(" %10s", workload.name);
  std::printf("\n%-12s", "");
  for (const Workload& workload : kWorkloads) std::printf(" %10s", workload.unit);
  for (const Result& result : results) {
    std::printf("\n%-12s", result.name.c_str());
    for (const auto& rate : result.rates)
      rate ? std::printf(" %10.1f", *rate) : std::printf(" %10s", "-");
  }
  std::printf("\n\n");
  for (const Result& result : results)
    std::printf(
        "%s: %d x %d, shown by: %s\n", result.name.c_str(), result.width, result.height,
        result.shownBy.empty() ? "nothing that the library knows of" : result.shownBy.c_str());
}

std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
  }
  return quoted + '"';
}

void PrintJson(const std::vector<Result>& results) {
  std::printf("{\n  \"version\": \"%s\",\n  \"units\": {", ZIRK_VERSION);
  const char* separator = "";
  for (const Workload& workload : kWorkloads) {
    std::printf("%s\"%s\": \"%s\"", separator, workload.name, workload.unit);
    separator = ", ";
  }
  std::printf("},\n  \"backends\": [");
  separator = "\n";
  for (const Result& result : results) {
    std::printf("%s    {\"name\": %s, \"width\": %d, \"height\": %d, \"shown-by\": %s", separator,
                Quoted(result.name).c_str(), result.width, result.height,
                Quoted(result.shownBy).c_str());
    for (size_t i = 0; i < result.rates.size(); ++i) {
      std::printf(", \"%s\": ", kWorkloads[i].name);
      result.rates[i] ? std::printf("%.1f", *result.rates[i]) : std::printf("null");
    }
    std::printf("}");
    separator = ",\n";
  }
  std::printf("\n  ]\n}\n");
}

}  // namespace

int MeasureBackends(const CommandLine& line) {
  const std::vector<Plugin> plugins = PluginsNamed(line.operands);
  if (plugins.empty()) return kFailed;
  const std::optional<std::string> font = ChooseFont(line);
  if (!font) return kFailed;
  std::vector<Result> results;
  int status = kDone;
  for (const Plugin& plugin : plugins) {
    if (!plugin.isGraphics || !plugin.draws) continue;
    if (auto result = MeasureBackend(plugin.name, *font, line.seconds)) {
      results.push_back(std::move(*result));
    } else if (!line.operands.empty()) {
      std::fprintf(stderr, "zirkinfo: %s: does not open here\n", plugin.name.c_str());
      status = kFailed;
    }
  }
  line.isJson ? PrintJson(results) : PrintTable(results);
  return status;
}

}  // namespace ZIRK::zirkinfo

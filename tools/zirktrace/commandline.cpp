#include "commandline.h"

#include <getopt.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>

namespace ZIRK::trace {

namespace {

constexpr char kHelp[] =
    R"(usage: zirktrace record [-o FILE] [--frames A-B] [--] PROGRAM [ARGUMENT...]
       zirktrace replay [--backend NAME] [--frames A-B] [--loop N] [--png FOLDER] FILE
       zirktrace replay --bench [--json] [--backend NAME] [--frames A-B] [--loop N] FILE
       zirktrace replay --compare [--worst STEPS] [--frames A-B] [--png FOLDER] A B FILE
       zirktrace dump [--frames A-B] FILE
       zirktrace info FILE
       zirktrace overdraw --frame N [--surface NUMBER] -o PNG FILE
       zirktrace report [--frames A-B] -o HTML FILE
       zirktrace trim [--worst STEPS] -o SMALL A B FILE

record     runs a program and records what it draws; a trace contains the
           program's fonts, texts and pictures
replay     draws a trace again, without the program, on any backend
dump       prints the operations of a trace, one per line
info       counts what a trace contains
overdraw   draws a map of how often a frame writes each pixel
report     writes a page with the frames, their cost, and hints
trim       makes the smallest trace that the backends A and B draw differently

  -o, --output FILE  the file to write; record names it after the program unless given
  --backend NAME     the backend that draws, the recorded one unless given
  --frames A-B       only these frames, counted from 1: A, A-, -B or A-B
  --frame N          only this frame
  --surface NUMBER   a surface by its number in dump, the shown screen unless given
  --loop N           replay this many times
  --png FOLDER       write what each frame shows, or the pictures that differ
  --bench            measure operations and frames per second, and the processor's
                     time by kind of operation
  --json             print the results of --bench as JSON
  --compare          replay on the backends A and B, and name the first operation
                     after which they differ
  --worst STEPS      allowed difference of a channel, of 255; 2 unless given
  --verbose          print the library's log lines
  -h, --help, --version

Exit status: 0 if all went well, 1 if a request could not be carried out,
2 if the command line is wrong, 3 if backends differ; record returns the
program's own status.
)";

enum OptionCode {
  kOutput = 'o',
  kHelpOption = 'h',
  kBackend = 1000,
  kFrames,
  kLoop,
  kPng,
  kBench,
  kJson,
  kCompare,
  kWorst,
  kSurface,
  kVerbose,
  kVersion,
};

constexpr option kOptions[] = {
    {"output", required_argument, nullptr, kOutput},
    {"backend", required_argument, nullptr, kBackend},
    {"frames", required_argument, nullptr, kFrames},
    {"frame", required_argument, nullptr, kFrames},
    {"loop", required_argument, nullptr, kLoop},
    {"png", required_argument, nullptr, kPng},
    {"bench", no_argument, nullptr, kBench},
    {"json", no_argument, nullptr, kJson},
    {"compare", no_argument, nullptr, kCompare},
    {"worst", required_argument, nullptr, kWorst},
    {"surface", required_argument, nullptr, kSurface},
    {"verbose", no_argument, nullptr, kVerbose},
    {"help", no_argument, nullptr, kHelpOption},
    {"version", no_argument, nullptr, kVersion},
    {},
};

struct Command {
  const char* name;
  std::vector<int> options;
  size_t operands;
};

const Command* FindCommand(const std::string& name) {
  static const Command kCommands[] = {
      {"record", {kOutput, kFrames}, 1},
      {"replay", {kBackend, kFrames, kLoop, kPng, kBench, kJson, kCompare, kWorst}, 1},
      {"dump", {kFrames}, 1},
      {"info", {}, 1},
      {"overdraw", {kOutput, kFrames, kSurface}, 1},
      {"report", {kOutput, kFrames}, 1},
      {"trim", {kOutput, kWorst}, 3},
  };
  for (const Command& command : kCommands)
    if (name == command.name) return &command;
  return nullptr;
}

constexpr support::Tool kTool = {"zirktrace", ZIRK_VERSION, kHelp, kOptions};

template <class T>
bool ReadNumber(const char* begin, const char* end, T least, T most, T& number) {
  const auto [stop, error] = std::from_chars(begin, end, number);
  return error == std::errc() && stop == end && number >= least && number <= most;
}

/// Reads A, A-, -B or A-B. Returns false if the text is invalid.
bool ReadFrames(const std::string& text, CommandLine& line) {
  constexpr uint64_t kMost = UINT64_MAX - 1;
  const char *const begin = text.data(), *const end = begin + text.size();
  const char* const dash = std::find(begin, end, '-');
  if (text.empty() || text == "-") return false;
  if (dash != begin && !ReadNumber(begin, dash, uint64_t{1}, kMost, line.firstFrame)) return false;
  if (dash == end) line.lastFrame = line.firstFrame;
  return dash == end || dash + 1 == end ||
         ReadNumber(dash + 1, end, line.firstFrame, kMost, line.lastFrame);
}

/// Stores an option. Returns false if its argument is invalid.
bool TakeOption(int code, const char* argument, CommandLine& line) {
  const char* const end = argument ? argument + std::strlen(argument) : nullptr;
  switch (code) {
    case kOutput:
      line.output = argument;
      return argument != end;
    case kBackend:
      line.backend = argument;
      return argument != end;
    case kFrames:
      return ReadFrames(argument, line);
    case kLoop:
      return ReadNumber(argument, end, 1, 1'000'000'000, line.loops);
    case kPng:
      line.pngFolder = argument;
      return argument != end;
    case kBench:
      line.measures = true;
      return true;
    case kJson:
      line.isJson = true;
      return true;
    case kCompare:
      line.compares = true;
      return true;
    case kWorst:
      return ReadNumber(argument, end, 0, 255, line.worst);
    case kSurface:
      return ReadNumber(argument, end, uint32_t{1}, UINT32_MAX, line.surface);
    case kVerbose:
      line.isVerbose = true;
      return true;
  }
  return true;
}

/// Checks that the command takes these options and operands. Returns the exit status if it does
/// not.
int Check(const CommandLine& line, const std::vector<int>& used) {
  const Command* const command = FindCommand(line.command);
  if (line.command.empty()) return kTool.Wrong("a %s is missing", "command");
  if (!command) return kTool.Wrong("unknown command '%s'", line.command.c_str());
  for (const int code : used)
    if (code != kVerbose && std::count(command->options.begin(), command->options.end(), code) == 0)
      return kTool.Wrong("'%s' has no option --%s", command->name, kTool.NameOf(code));
  const size_t operands = line.compares ? 3 : command->operands;
  if (line.operands.size() < operands)
    return kTool.Wrong("'%s' needs more operands", command->name);
  if (line.operands.size() > operands && line.command != "record")
    return kTool.Wrong("unexpected '%s'", line.operands[operands].c_str());
  if (line.compares && !line.backend.empty())
    return kTool.Wrong("either --%s or --compare", kTool.NameOf(kBackend));
  if (line.measures && (line.compares || !line.pngFolder.empty()))
    return kTool.Wrong("--%s goes without --compare and --png", kTool.NameOf(kBench));
  if (line.isJson && !line.measures)
    return kTool.Wrong("--%s goes with --bench", kTool.NameOf(kJson));
  if (line.command == "overdraw" && (line.output.empty() || line.firstFrame != line.lastFrame))
    return kTool.Wrong("'%s' needs --output and one --frame", command->name);
  if ((line.command == "report" || line.command == "trim") && line.output.empty())
    return kTool.Wrong("'%s' needs --output", command->name);
  return kDone;
}

}  // namespace

bool ParseCommandLine(int argc, char** argv, CommandLine& line, int& status) {
  std::vector<int> used;
  if (argc > 1 && argv[1][0] != '-') {
    line.command = argv[1];
    ++argv, --argc;
  }
  // Options after the name of the recorded program belong to that program.
  const char* const letters = line.command == "record" ? "+:ho:" : ":ho:";
  const auto take = [&line](int code, const char* argument) {
    return TakeOption(code, argument, line);
  };
  if (!kTool.ReadOptions(argc, argv, letters, take, used, status)) return false;
  line.operands.assign(argv + optind, argv + argc);
  status = Check(line, used);
  return status == kDone;
}

}  // namespace ZIRK::trace

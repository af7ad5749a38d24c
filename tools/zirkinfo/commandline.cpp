#include "commandline.h"

#include <getopt.h>

#include <cstdio>
#include <cstdlib>

namespace ZIRK::zirkinfo {

namespace {

constexpr char kHelp[] =
    R"(usage: zirkinfo [--verbose] [--plugin FILE] [backends [NAME...]]
       zirkinfo font [--size PIXELS] [--characters] FILE...
       zirkinfo card [--backend NAME] [--plugin FILE] [--screen] [--hold SECONDS]
                     [--font FILE | --no-text] [FILE.png]
       zirkinfo compare [--worst STEPS] [--mean STEPS] [--output FILE.png] [--screen]
                        [--plugin FILE] [--font FILE | --no-text] A B
       zirkinfo bench [--json] [--seconds SECONDS] [--plugin FILE]
                      [--font FILE | --no-text] [NAME...]

backends   lists the installed backends with their capabilities, what shows their
           screens, or why they do not open
font       lists the faces in a font file, and their metrics at a size
card       draws the test card with a backend, the default one unless named, and
           writes it to a file
compare    measures how much two test cards or two pictures differ: A and B are
           names of backends or of PNG files
bench      measures how fast the backends draw

  --backend NAME     the backend that draws the card
  --plugin FILE      a third party's plug-in, as one more backend
  --screen           draw on a screen instead of a bitmap
  --hold SECONDS     how long to show the screen
  --font FILE        the font of the card's text
  --no-text          draw the card without text
  --size PIXELS      size of the font, 16 unless given
  --characters       list the characters that a face has
  --worst STEPS      allowed difference of a channel, of 255
  --mean STEPS       allowed mean difference
  --output FILE.png  write the difference, eight times as strong
  --json             print JSON instead of a table
  --seconds SECONDS  how long each measurement takes, 1 unless given
  --verbose          print the library's log lines
  -h, --help, --version

Exit status: 0 if all went well, 1 if a request could not be carried out,
2 if the command line is wrong, 3 if pictures differ by more than is allowed.
)";

enum OptionCode {
  kBackend = 1000,
  kScreen,
  kHold,
  kFont,
  kNoText,
  kSize,
  kCharacters,
  kWorst,
  kMean,
  kOutput,
  kPlugin,
  kJson,
  kSeconds,
  kVerbose,
  kVersion,
  kHelpOption = 'h',
};

constexpr option kOptions[] = {
    {"backend", required_argument, nullptr, kBackend},
    {"screen", no_argument, nullptr, kScreen},
    {"hold", required_argument, nullptr, kHold},
    {"font", required_argument, nullptr, kFont},
    {"no-text", no_argument, nullptr, kNoText},
    {"size", required_argument, nullptr, kSize},
    {"characters", no_argument, nullptr, kCharacters},
    {"worst", required_argument, nullptr, kWorst},
    {"mean", required_argument, nullptr, kMean},
    {"output", required_argument, nullptr, kOutput},
    {"plugin", required_argument, nullptr, kPlugin},
    {"json", no_argument, nullptr, kJson},
    {"seconds", required_argument, nullptr, kSeconds},
    {"verbose", no_argument, nullptr, kVerbose},
    {"help", no_argument, nullptr, kHelpOption},
    {"version", no_argument, nullptr, kVersion},
    {},
};

/// A command with its options and its number of operands.
struct Command {
  const char* name;
  std::vector<int> options;
  size_t fewest, most;
};

constexpr size_t kAny = 1'000'000;

const Command* FindCommand(const std::string& name) {
  static const Command kCommands[] = {
      {"backends", {kPlugin}, 0, kAny},
      {"font", {kSize, kCharacters}, 1, kAny},
      {"card", {kBackend, kPlugin, kScreen, kHold, kFont, kNoText}, 0, 1},
      {"compare", {kPlugin, kScreen, kFont, kNoText, kWorst, kMean, kOutput}, 2, 2},
      {"bench", {kPlugin, kJson, kSeconds, kFont, kNoText}, 0, kAny},
  };
  for (const Command& command : kCommands)
    if (name == command.name) return &command;
  return nullptr;
}

constexpr support::Tool kTool = {"zirkinfo", ZIRK_VERSION, kHelp, kOptions};

bool ReadNumber(const char* text, double least, double most, double& number) {
  char* end = nullptr;
  number = std::strtod(text, &end);
  return end != text && *end == '\0' && number >= least && number <= most;
}

bool ReadWholeNumber(const char* text, int least, int most, int& number) {
  double value = 0;
  if (!ReadNumber(text, least, most, value)) return false;
  number = static_cast<int>(value);
  return number == value;
}

/// Stores an option. Returns false if its argument is empty or not a number in its range.
bool TakeOption(int code, const char* argument, CommandLine& line) {
  switch (code) {
    case kBackend:
      line.backend = argument;
      return !line.backend.empty();
    case kFont:
      line.fontFile = argument;
      return true;
    case kOutput:
      line.output = argument;
      return true;
    case kPlugin:
      line.plugin = argument;
      return !line.plugin.empty();
    case kJson:
      line.isJson = true;
      return true;
    case kSeconds:
      return ReadNumber(argument, 0.001, 3600, line.seconds);
    case kScreen:
      line.isOnScreen = true;
      return true;
    case kNoText:
      line.hasText = false;
      return true;
    case kCharacters:
      line.listsCharacters = true;
      return true;
    case kVerbose:
      line.isVerbose = true;
      return true;
    case kHold:
      return ReadWholeNumber(argument, 0, 86400, line.hold);
    case kSize:
      return ReadWholeNumber(argument, 1, 1000, line.size);
    case kWorst:
      return ReadNumber(argument, 0, 255, line.worst);
    case kMean:
      return ReadNumber(argument, 0, 255, line.mean);
  }
  return true;
}

/// The file that the command writes; empty for none.
std::string OutputOf(const CommandLine& line) {
  return line.command == "card" && !line.operands.empty() ? line.operands[0] : line.output;
}

/// Checks the options and operands of the command. Returns kDone, or the status after an error.
int Check(const CommandLine& line, const std::vector<int>& used) {
  const Command* const command = FindCommand(line.command);
  if (!command) return kTool.Wrong("unknown command '%s'", line.command.c_str());
  for (const int code : used) {
    bool isKnown = code == kVerbose;
    for (const int known : command->options) isKnown = isKnown || known == code;
    if (!isKnown) return kTool.Wrong("'%s' has no option --%s", command->name, kTool.NameOf(code));
  }
  if (line.operands.size() < command->fewest)
    return kTool.Wrong("'%s' needs more operands", command->name);
  if (line.operands.size() > command->most)
    return kTool.Wrong("unexpected '%s'", line.operands[command->most].c_str());
  if (!line.hasText && !line.fontFile.empty()) return kTool.Wrong("either --font or --no-text");
  if (const std::string file = OutputOf(line); !file.empty() && !IsPngFile(file))
    return kTool.Wrong("'%s' does not end in .png", file.c_str());
  if (line.hold > 0 && !line.isOnScreen) return kTool.Wrong("--hold goes with --screen");
  return kDone;
}

}  // namespace

bool ParseCommandLine(int argc, char** argv, CommandLine& line, int& status) {
  std::vector<int> used;
  const auto take = [&line](int code, const char* argument) {
    return TakeOption(code, argument, line);
  };
  if (!kTool.ReadOptions(argc, argv, ":h", take, used, status)) return false;
  if (optind < argc) line.command = argv[optind++];
  line.operands.assign(argv + optind, argv + argc);
  status = Check(line, used);
  return status == kDone;
}

bool IsPngFile(const std::string& name) {
  constexpr char kEnding[] = ".png";
  constexpr size_t kLength = sizeof kEnding - 1;
  return name.size() > kLength && name.compare(name.size() - kLength, kLength, kEnding) == 0;
}

}  // namespace ZIRK::zirkinfo

#include "support/tool.h"

#include <exception>
#include <string_view>

namespace ZIRK::support {

const char* Tool::NameOf(int code) const {
  for (const option* o = options; o->name; ++o)
    if (o->val == code) return o->name;
  return "";
}

bool Tool::ReadOptions(int argc, char** argv, const char* letters,
                       const std::function<bool(int code, const char* argument)>& take,
                       std::vector<int>& used, int& status) const {
  opterr = 0;
  for (int code; (code = getopt_long(argc, argv, letters, options, nullptr)) != -1;) {
    status = kDone;
    const std::string_view option = NameOf(code);
    if (option == "help") return std::fputs(help, stdout), false;
    if (option == "version") return std::printf("%s %s\n", name, version), false;
    if (code == ':') return status = Wrong("%s needs an argument", argv[optind - 1]), false;
    if (code == '?' && optopt) return status = Wrong("wrong option -%c", optopt), false;
    if (code == '?') return status = Wrong("wrong option %s", argv[optind - 1]), false;
    if (!take(code, optarg))
      return status = Wrong("--%s: '%s' is not valid", NameOf(code), optarg), false;
    used.push_back(code);
  }
  return true;
}

int RunTool(const char* name, int argc, char** argv, int (*run)(int argc, char** argv)) {
  int status = kFailed;
  try {
    status = run(argc, argv);
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "%s: %s\n", name, problem.what());
  }
  if (std::fflush(stdout) == 0) return status;
  std::fprintf(stderr, "%s: ", name);
  std::perror("standard output");
  return kFailed;
}

}  // namespace ZIRK::support

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <thread>

#include "commands.h"
#include "ring.h"
#include "tracefile.h"

namespace ZIRK::trace {

namespace {

using Clock = std::chrono::steady_clock;
namespace fs = std::filesystem;

constexpr auto kPause = std::chrono::milliseconds(2);
/// A crash of this program or of the machine loses at most the records of this time.
constexpr auto kFlushInterval = std::chrono::milliseconds(100);

int Failed(const std::string& what) {
  std::fprintf(stderr, "zirktrace: %s: %s\n", what.c_str(), std::strerror(errno));
  return kFailed;
}

/// Returns the folder of the recording plug-ins, which is relative to this program's file.
std::string FolderOfPlugins() {
  std::error_code error;
  const fs::path program = fs::canonical("/proc/self/exe", error);
  return (program.parent_path() / ZIRK_TRACE_PLUGINS).lexically_normal();
}

/// Starts the program with the folder of recording plug-ins first in the search path. Returns -1
/// and sets `errno` on failure.
pid_t Start(const CommandLine& line, const Ring& ring) {
  const char* const before = std::getenv("LD_LIBRARY_PATH");
  const std::string path = FolderOfPlugins() + (before && *before ? std::string(":") + before : "");
  setenv("LD_LIBRARY_PATH", path.c_str(), 1);
  setenv(kRingVariable, std::to_string(ring.Descriptor()).c_str(), 1);
  const std::string frames = std::to_string(line.firstFrame) + '-' + std::to_string(line.lastFrame);
  setenv(kFramesVariable, frames.c_str(), 1);
  std::vector<char*> arguments;
  for (const std::string& argument : line.operands)
    arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  pid_t program = -1;
  errno = posix_spawnp(&program, arguments[0], nullptr, nullptr, arguments.data(), environ);
  return errno == 0 ? program : -1;
}

/// Moves the bytes in the ring to the file. Returns false and sets `errno` if it cannot be written.
bool Drain(Ring& ring, TraceWriter& writer) {
  for (std::span<const uint8_t> bytes; !(bytes = ring.Readable()).empty();) {
    if (!writer.Add(bytes)) return false;
    ring.Consume(bytes.size());
  }
  return true;
}

/// Writes the file until the program ends, and stores its `status`. Returns false and sets `errno`
/// if the file cannot be written; the program then still runs to its end.
bool WriteTrace(Ring& ring, TraceWriter& writer, pid_t program, int& status) {
  bool isWritten = true, hasEnded = false;
  for (Clock::time_point flushed = Clock::now(); !hasEnded;) {
    // Check this first: if the program has ended, the ring now holds all its records.
    hasEnded = waitpid(program, &status, isWritten ? WNOHANG : 0) == program;
    if (!isWritten) continue;
    isWritten = Drain(ring, writer);
    if (isWritten && (hasEnded || Clock::now() - flushed > kFlushInterval)) {
      isWritten = writer.Flush();
      flushed = Clock::now();
    }
    if (!isWritten) ring.Close();
    if (!hasEnded && isWritten) std::this_thread::sleep_for(kPause);
  }
  return isWritten;
}

}  // namespace

int RecordProgram(const CommandLine& line) {
  const std::string file = line.output.empty()
                               ? fs::path(line.operands[0]).filename().string() + ".zirktrace"
                               : line.output;
  const std::unique_ptr<Ring> ring = Ring::Create();
  if (!ring) return Failed("memory to share");
  const std::unique_ptr<TraceWriter> writer = TraceWriter::Create(file);
  if (!writer) return Failed(file);
  const pid_t program = Start(line, *ring);
  if (program < 0) {
    Failed(line.operands[0]);
    std::remove(file.c_str());
    return kFailed;
  }
  // Signals from the terminal are for the recorded program. After its end, this one writes the
  // remaining records.
  std::signal(SIGINT, SIG_IGN);
  std::signal(SIGQUIT, SIG_IGN);
  int status = 0;
  if (!WriteTrace(*ring, *writer, program, status)) Failed(file);
  if (!ring->IsClaimed()) {
    std::fprintf(stderr, "zirktrace: %s: opened no backend of the library\n",
                 line.operands[0].c_str());
    return kFailed;
  }
  constexpr int kSignal = 128;
  return WIFEXITED(status) ? WEXITSTATUS(status) : kSignal + WTERMSIG(status);
}

}  // namespace ZIRK::trace

#include <zirk/kit/pictures.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iterator>
#include <sstream>

#include "commands.h"
#include "heatmap.h"
#include "hints.h"
#include "openedtrace.h"
#include "printer.h"
#include "reportpage.h"

namespace ZIRK::trace {

namespace {

// The limits of a page, so that a browser can show it.
constexpr size_t kMostFrames = 5000;              // The rest of the trace is not read.
constexpr size_t kMostDetail = size_t{24} << 20;  // Bytes of pictures and operations.
constexpr size_t kMostOperations = 5000;          // Of a frame.
constexpr size_t kLongestText = 400;              // Characters of an operation.
constexpr size_t kMostHints = 100;
constexpr int kPictureWidth = 400, kPictureHeight = 400;

/// Returns a JSON string in ASCII, in which nothing can end a script.
std::string Quote(const std::string& text) {
  std::string quoted = "\"";
  const auto escape = [&](unsigned unit) {
    char code[8];
    std::snprintf(code, sizeof code, "\\u%04x", unit);
    quoted += code;
  };
  for (const char* at = text.c_str(); *at;) {
    int length = 0;
    unsigned code = GetUtf8Char(at, &length);
    at += std::max(length, 1);
    if (length == 0 || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) code = 0xFFFD;
    if (code >= 0x10000) {
      escape(0xD800 + ((code - 0x10000) >> 10));
      escape(0xDC00 + (code & 0x3FF));
    } else if (code < ' ' || code > '~' || std::strchr("\"\\<>&", static_cast<int>(code))) {
      escape(code);
    } else {
      quoted += static_cast<char>(code);
    }
  }
  return quoted + '"';
}

std::string Base64(const std::string& bytes) {
  static constexpr char kDigits[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (size_t i = 0; i < bytes.size(); i += 3) {
    const size_t count = std::min<size_t>(3, bytes.size() - i);
    uint32_t group = 0;
    for (size_t k = 0; k < 3; ++k)
      group = group << 8 | (k < count ? static_cast<uint8_t>(bytes[i + k]) : 0u);
    for (size_t k = 0; k < 4; ++k) text += k <= count ? kDigits[group >> (18 - 6 * k) & 63] : '=';
  }
  return text;
}

/// Returns a JSON number with three decimal places.
std::string Rounded(double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%.3f", value);
  return text;
}

/// Returns the bitmap as the data URI of a picture, or an empty string on failure.
std::string ToDataUri(VuBitmap& bitmap) {
  const std::shared_ptr<const MemoryFile> file = MemoryFile::Create({});
  if (!file || !kit::SavePng(bitmap, file->Path().c_str())) return "";
  std::ifstream stream(file->Path(), std::ios::binary);
  return "data:image/png;base64," + Base64({std::istreambuf_iterator<char>(stream), {}});
}

/// The data of a frame in the page.
struct Frame {
  uint64_t number = 0;
  double drawing = 0, showing = 0;     ///< Milliseconds.
  double onScreen = 0, elsewhere = 0;  ///< Pixels written for each pixel of the screen.
  uint64_t operations = 0, queries = 0;
  std::string rows;  ///< JSON of the listed operations.
  size_t listed = 0;
  std::string picture, heat, heatOf;
};

std::string ToJson(const Frame& frame, bool isDetailed) {
  std::ostringstream json;
  json << "{\"n\":" << frame.number << ",\"drawing\":" << Rounded(frame.drawing)
       << ",\"showing\":" << Rounded(frame.showing) << ",\"screen\":" << Rounded(frame.onScreen)
       << ",\"elsewhere\":" << Rounded(frame.elsewhere) << ",\"count\":" << frame.operations
       << ",\"queries\":" << frame.queries;
  if (isDetailed)
    json << ",\"picture\":" << Quote(frame.picture) << ",\"heat\":" << Quote(frame.heat)
         << ",\"heatOf\":" << Quote(frame.heatOf) << ",\"operations\":[" << frame.rows << ']';
  json << '}';
  return json.str();
}

/// The data of a page, collected by replaying a trace on FB.
class Report {
 public:
  explicit Report(const CommandLine& line) : line_(line) {}

  /// Prints a line and returns false if the trace cannot be replayed.
  bool Read();
  std::string ToPage() const;

 private:
  bool Take(const Record& record);
  void List(const Record& record, uint64_t pixels);
  void EndFrame();
  void TakePictures(VuBitmap& shown, const WriteCounts& hottest);
  std::string Shrunk(VuBitmap& bitmap);
  std::string HintsToJson() const;
  std::string LeftOut() const;

  const CommandLine& line_;
  Player player_{"FB"};
  Coverage coverage_{player_};
  Hints hints_{player_, coverage_};
  OwnSurfaces own_{player_, UINT32_MAX - 1000};
  Frame frame_;
  FrameCounts counts_;
  uint64_t begin_ = 0, latest_ = 0;  ///< Nanoseconds: start of frame, last record.
  std::string frames_;               ///< JSON of the complete frames.
  size_t frameCount_ = 0, detailed_ = 0, detail_ = 0;
  bool isCutOff_ = false;
};

double Milliseconds(uint64_t from, uint64_t to) {
  constexpr double kPerMillisecond = 1e6;
  return to > from ? static_cast<double>(to - from) / kPerMillisecond : 0;
}

bool Report::Read() {
  OpenedTrace trace(line_.operands[0]);
  for (Record record; trace.Next(record) && record.frame <= line_.lastFrame;) {
    if (frameCount_ == kMostFrames) {
      isCutOff_ = true;
      break;
    }
    if (Take(record)) continue;
    trace.Report(record, player_);
    return false;
  }
  if (frame_.operations > 0 && counts_.Shown() != Id::None) EndFrame();
  return trace.Report();
}

bool Report::Take(const Record& record) {
  coverage_.Follow(record);
  own_.Follow(record);
  const bool isAsked = record.frame >= line_.firstFrame;
  const bool isEnd = record.operation == Operation::SwapBuffers;
  if (isAsked) {
    const auto pixels = counts_.Count(record, player_, coverage_);
    if (!pixels || !hints_.Before(record)) return false;
    frame_.number = record.frame;
    List(record, *pixels);
    if (isEnd) {
      frame_.showing = Milliseconds(latest_, record.time);
      EndFrame();
    }
  }
  if (!player_.Play(record)) return false;
  hints_.After(record);
  latest_ = record.time;
  if (isEnd) begin_ = record.time;
  return true;
}

void Report::List(const Record& record, uint64_t pixels) {
  ++frame_.operations;
  if (record.operation != Operation::SwapBuffers)
    frame_.drawing = Milliseconds(begin_, record.time);
  frame_.queries += IsQuery(record.operation);
  if (IsQuery(record.operation) || frame_.listed == kMostOperations || detail_ > kMostDetail)
    return;
  std::string text = ToText(record);
  if (text.size() > kLongestText) text = text.substr(0, kLongestText) + "\u2026";
  std::ostringstream row;
  row << (frame_.listed++ > 0 ? ",[" : "[") << record.number << ','
      << Rounded(Milliseconds(begin_, record.time)) << ',' << Quote(text) << ',' << pixels << ']';
  frame_.rows += row.str();
}

/// Ends the frame. Call it before the screen's SwapBuffers() is played.
void Report::EndFrame() {
  const auto shown = counts_.Surfaces().find(counts_.Shown());
  VuBitmap* const bitmap = player_.Find(counts_.Shown());
  if (shown != counts_.Surfaces().end() && bitmap) {
    uint64_t all = 0;
    auto hottest = shown;
    for (auto at = counts_.Surfaces().begin(); at != counts_.Surfaces().end(); ++at) {
      all += at->second.Sum();
      if (at->second.Sum() > hottest->second.Sum()) hottest = at;
    }
    frame_.onScreen = shown->second.Mean();
    frame_.elsewhere = static_cast<double>(all - shown->second.Sum()) /
                       static_cast<double>(shown->second.Counts().size());
    frame_.heatOf = hints_.Describe(hottest->first);
    if (detail_ <= kMostDetail) TakePictures(*bitmap, hottest->second);
  }
  const bool isDetailed = detail_ <= kMostDetail;
  frames_ += (frameCount_++ > 0 ? ",\n" : "") + ToJson(frame_, isDetailed);
  if (isDetailed) {
    ++detailed_;
    detail_ += frame_.rows.size() + frame_.picture.size() + frame_.heat.size();
  }
  frame_ = {};
  counts_ = {};
}

void Report::TakePictures(VuBitmap& shown, const WriteCounts& hottest) {
  frame_.picture = Shrunk(shown);
  VuBitmap* const heat = own_.Get(0, hottest.Width(), hottest.Height(), VuPixelFormat::XRGB8888);
  if (!heat) return;
  PutHeat(*heat, hottest);
  frame_.heat = Shrunk(*heat);
}

/// Returns a picture no larger than the page's limit. Halves it repeatedly, so that each step
/// averages at most four pixels.
std::string Report::Shrunk(VuBitmap& bitmap) {
  VuBitmap* from = &bitmap;
  for (uint32_t step = 1;; ++step) {
    const VuRect bounds = from->GetBounds();
    const double factor = std::min({1.0, static_cast<double>(kPictureWidth) / bounds.width,
                                    static_cast<double>(kPictureHeight) / bounds.height});
    const double scale = std::max(factor, 0.5);
    const auto scaled = [&](int extent) { return std::max(1, static_cast<int>(extent * scale)); };
    VuBitmap* const to =
        own_.Get(step, scaled(bounds.width), scaled(bounds.height), VuPixelFormat::XRGB8888);
    if (!to) return "";
    const VuScaleMode mode = from->GetScaleMode();
    from->SetScaleMode(VuScaleMode::Bilinear);
    to->Clear(0xFF000000);
    to->DrawObject(to->GetBounds(), *from);
    from->SetScaleMode(mode);
    if (factor >= 0.5) return ToDataUri(*to);
    from = to;
  }
}

std::string Report::HintsToJson() const {
  std::ostringstream json;
  const std::vector<Hint> hints = hints_.Found();
  for (size_t i = 0; i < std::min(hints.size(), kMostHints); ++i)
    json << (i > 0 ? ",\n" : "") << "{\"what\":" << Quote(hints[i].what)
         << ",\"times\":" << hints[i].times << ",\"frames\":" << hints[i].frames
         << ",\"first\":" << hints[i].first << '}';
  return json.str();
}

/// Returns notes about what the page leaves out, as elements of a JSON array.
std::string Report::LeftOut() const {
  std::ostringstream left;
  if (isCutOff_)
    left << Quote("Frames after these are left out; --frames A-B asks for others.") << ',';
  if (detailed_ < frameCount_)
    left << Quote("Frames after the first " + std::to_string(detailed_) +
                  " have no pictures and operations here; --frames A-B asks for others.")
         << ',';
  const size_t hints = hints_.Found().size();
  if (hints > kMostHints) left << Quote(std::to_string(hints - kMostHints) + " more hints.") << ',';
  const std::string text = left.str();
  return text.substr(0, text.empty() ? 0 : text.size() - 1);
}

std::string Report::ToPage() const {
  std::ostringstream colors;
  colors << std::hex << std::setfill('0');
  for (const uint32_t color : kHeatColors)
    colors << (colors.tellp() > 0 ? ",\"#" : "\"#") << std::setw(6) << (color & 0xFFFFFF) << '"';
  const size_t mark = kReportPage.find(kDataMark);
  std::ostringstream whole;
  whole << kReportPage.substr(0, mark)
        << "{\"file\":" << Quote(std::filesystem::path(line_.operands[0]).filename().string())
        << ",\"colors\":[" << colors.str() << "],\"left\":[" << LeftOut() << "],\n\"hints\":["
        << HintsToJson() << "],\n\"frames\":[" << frames_ << "]}"
        << kReportPage.substr(mark + kDataMark.size());
  return whole.str();
}

}  // namespace

int WriteReport(const CommandLine& line) {
  Report report(line);
  if (!report.Read()) return kFailed;
  std::ofstream file(line.output, std::ios::binary);
  file << report.ToPage() << std::flush;
  if (file) return kDone;
  std::fprintf(stderr, "zirktrace: %s: cannot be written\n", line.output.c_str());
  return kFailed;
}

}  // namespace ZIRK::trace

#include "printer.h"

#include <cstdio>

#include "fields.h"

namespace ZIRK::trace {

namespace {

/// An archive that prints fields.
class Printer {
 public:
  template <class T>
  void Scalar(const T& value) {
    if constexpr (std::is_same_v<T, bool>) {
      text_ += value ? "true" : "false";
    } else if constexpr (std::is_floating_point_v<T>) {
      char number[32];
      // Enough digits to read back the same number.
      std::snprintf(number, sizeof number, "%.9g", static_cast<double>(value));
      text_ += number;
    } else {
      text_ += std::to_string(value);
    }
  }
  void Color(uint32_t argb) { Hex("#%08X", argb); }
  void Number(Id id) { text_ += '@' + std::to_string(static_cast<uint32_t>(id)); }
  void Characters(const char* text) {
    if (!text) {
      text_ += "null";
      return;
    }
    text_ += '"';
    for (; *text; ++text) {
      const auto byte = static_cast<unsigned char>(*text);
      if (byte < ' ' || byte == '\x7F') {
        Hex("\\x%02X", byte);
        continue;
      }
      if (*text == '"' || *text == '\\') text_ += '\\';
      text_ += *text;
    }
    text_ += '"';
  }
  template <class... T>
  void Group(T&... values) {
    const char* separator = "(";
    ((text_ += separator, separator = ", ", Transfer(*this, values)), ...);
    text_ += ')';
  }
  void Refuse() {}

  const std::string& Get() const { return text_; }

 private:
  void Hex(const char* format, unsigned value) {
    char text[16];
    std::snprintf(text, sizeof text, format, value);
    text_ += text;
  }

  std::string text_;
};

/// Reads the values of the types and returns them as text, separated by commas.
template <class... W>
std::string ReadAndPrint(Decoder& decoder) {
  std::string line;
  [[maybe_unused]] const auto add = [&](auto value) {
    if constexpr (std::is_same_v<decltype(value), std::monostate>) return;
    Transfer(decoder, value);
    Printer printer;
    Transfer(printer, value);
    line += (line.empty() ? "" : ", ") + printer.Get();
  };
  (add(Value<W>{}), ...);
  return line;
}

}  // namespace

std::string ToText(const Record& record) {
  std::string text;
  Decoder decoder(record.fields);
  if (HasObject(record.operation)) text += ReadAndPrint<Id>(decoder) + '.';
  text += NameOf(record.operation);
  WithFields(record.operation, [&]<class Result, class... W>() {
    text += '(' + ReadAndPrint<W...>(decoder) + ')';
    const std::string result = ReadAndPrint<Result>(decoder);
    if (!result.empty()) text += " -> " + result;
  });
  if (record.operation == Operation::Content)
    text += ' ' + std::to_string(decoder.Rest().size()) + " bytes";
  return text;
}

std::string ToLine(const Record& record) {
  constexpr double kPerMillisecond = 1e6;
  char head[96];
  std::snprintf(head, sizeof head, "%llu frame %llu thread %u %.3f ms ",
                static_cast<unsigned long long>(record.number),
                static_cast<unsigned long long>(record.frame), record.thread,
                static_cast<double>(record.time) / kPerMillisecond);
  return head + ToText(record);
}

}  // namespace ZIRK::trace

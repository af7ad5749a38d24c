#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "fields.h"
#include "program.h"
#include "tracefile.h"

namespace ZIRK::trace {

/// A trace of these records.
class Trace {
 public:
  template <class... T>
  Trace& Add(Operation operation, T... fields) {
    Encoder body;
    (Transfer(body, fields), ...);
    return AddRaw(static_cast<uint32_t>(kHeadSize - 4 + body.Bytes().size()), operation,
                  body.Bytes());
  }
  Trace& AddRaw(uint32_t length, Operation operation, std::span<const uint8_t> body = {}) {
    Encoder head;
    RecordHead values{length, operation, 0, 0};
    Transfer(head, values);
    bytes_.insert(bytes_.end(), head.Bytes().begin(), head.Bytes().end());
    bytes_.insert(bytes_.end(), body.begin(), body.end());
    return *this;
  }
  std::vector<uint8_t>& Bytes() { return bytes_; }
  /// Writes it to a file.
  void Save(const std::string& path) const {
    const auto writer = TraceWriter::Create(path);
    ASSERT_TRUE(writer && writer->Add(bytes_) && writer->Flush());
  }
  /// As a file has it, which is named after the test.
  std::string InFile() const {
    const std::string path = helpers::FolderOf("zirktrace_test") + '/' +
                             testing::UnitTest::GetInstance()->current_test_info()->name();
    Save(path);
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::vector<uint8_t> bytes_;
};

}  // namespace ZIRK::trace

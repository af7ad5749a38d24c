#include "images/imagestream.h"

#include <unistd.h>

#include <algorithm>
#include <iterator>

#include "backends/images/pictures.h"

namespace ZIRK::tests {
namespace {

using backends::ImageStream;

TEST(ImageStream, ReadsAFileInPieces) {
  const Bytes plain = ReadSample("rgb.jpg");
  Bytes bytes = {0xFF, 0xD8, 0xFF, 0xFE, 60000 >> 8, 60000 & 255};  // A long comment.
  for (unsigned i = 2; i < 60000; ++i) bytes.push_back(static_cast<uint8_t>(i * i >> 7));
  bytes.insert(bytes.end(), plain.begin() + 2, plain.end());
  const std::string path = testing::TempDir() + "zirk-image-" + std::to_string(getpid());
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size()));

  ImageStream stream(path.c_str());
  Bytes joined(20000);
  EXPECT_TRUE(stream.Read(joined.data(), joined.size()));
  const auto rest = stream.TakeUpTo(1000000);
  std::copy_n(rest.data, rest.size, std::back_inserter(joined));
  EXPECT_EQ(joined, bytes);
  // A decoder skips the comment.
  EXPECT_EQ(Shown(Image::Open(path.c_str()), 5, 5, {}).data, Shown(Open(plain), 5, 5, {}).data);
  unlink(path.c_str());
}

}  // namespace
}  // namespace ZIRK::tests

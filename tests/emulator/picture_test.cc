// SPDX-License-Identifier: MIT
#include "emulator/picture/picture.h"

#include <zlib.h>

#include <cstddef>
#include <cstdint>
#include <set>

#include "emulator/picture/png.h"
#include "emulator/random_stream.h"
#include "tests/emulator/content_fixture.h"

namespace stowra_emulator {
namespace {

std::uint32_t NumberAt(const std::string& bytes, std::size_t at) {
  std::uint32_t number = 0;
  for (std::size_t i = at; i < at + 4; ++i) {
    number = number << 8 | static_cast<unsigned char>(bytes.at(i));
  }
  return number;
}

struct Chunk {
  std::string type;
  std::string data;
};

// Fails the current test if a length or a checksum is wrong.
std::vector<Chunk> ChunksOf(const std::string& png) {
  const std::string signature = "\x89PNG\r\n\x1A\n";
  EXPECT_EQ(png.substr(0, signature.size()), signature);
  std::vector<Chunk> chunks;
  std::size_t at = signature.size();
  while (at < png.size()) {
    const std::size_t length = NumberAt(png, at);
    if (length > png.size() || at + 12 + length > png.size()) {
      ADD_FAILURE() << "a chunk of " << length << " bytes at " << at;
      return chunks;
    }
    const std::string checked = png.substr(at + 4, 4 + length);
    EXPECT_EQ(NumberAt(png, at + 8 + length),
              crc32(0, reinterpret_cast<const Bytef*>(checked.data()),
                    static_cast<uInt>(checked.size())));
    chunks.push_back({checked.substr(0, 4), checked.substr(4)});
    at += 12 + length;
  }
  return chunks;
}

struct Image {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::string pixels;  // Three bytes each, row by row.
};

// Undoes the filter of each row, which stores differences from the row above.
std::string Unfiltered(const std::string& rows, std::size_t row_size) {
  constexpr char kUp = 2;
  std::string pixels;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (i % (row_size + 1) == 0) {
      EXPECT_EQ(rows[i], kUp);
    } else {
      const char above = pixels.size() < row_size ? '\0' : pixels[pixels.size() - row_size];
      pixels += static_cast<char>(rows[i] + above);
    }
  }
  return pixels;
}

Image Decode(const std::string& png) {
  const std::vector<Chunk> chunks = ChunksOf(png);
  Image image;
  if (chunks.size() < 3) {
    ADD_FAILURE() << chunks.size() << " chunks";
    return image;
  }
  EXPECT_EQ(chunks.front().type, "IHDR");
  EXPECT_EQ(chunks.back().type, "IEND");
  EXPECT_EQ(chunks.back().data, "");
  const std::string& header = chunks.front().data;
  EXPECT_EQ(header.size(), 13u);
  image.width = NumberAt(header, 0);
  image.height = NumberAt(header, 4);
  EXPECT_EQ(header.substr(8), std::string("\x08\x02\0\0\0", 5));
  std::string deflated;
  for (const Chunk& chunk : chunks) deflated += chunk.type == "IDAT" ? chunk.data : "";

  const std::size_t row_size = std::size_t{image.width} * 3;
  uLongf size = static_cast<uLongf>((row_size + 1) * image.height + 1);
  std::string rows(size, '\0');
  EXPECT_EQ(uncompress(reinterpret_cast<Bytef*>(rows.data()), &size,
                       reinterpret_cast<const Bytef*>(deflated.data()),
                       static_cast<uLong>(deflated.size())),
            Z_OK);
  EXPECT_EQ(size, (row_size + 1) * image.height);
  rows.resize(size);
  image.pixels = Unfiltered(rows, row_size);
  return image;
}

std::size_t CountColours(const Image& image) {
  std::set<std::string> colours;
  for (std::size_t i = 0; i < image.pixels.size(); i += 3)
    colours.insert(image.pixels.substr(i, 3));
  return colours.size();
}

TEST(PngTest, DecodesToTheSamePixels) {
  for (const int width : {1, 2, 7, 300}) {
    for (const int height : {1, 3, 41}) {
      RandomStream random("pixels");
      std::string pixels;
      for (int i = 0; i < width * height * 3; ++i) pixels += static_cast<char>(random.Next());
      const Image image = Decode(EncodePng(width, height, pixels));
      EXPECT_EQ(image.width, static_cast<std::uint32_t>(width));
      EXPECT_EQ(image.height, static_cast<std::uint32_t>(height));
      EXPECT_TRUE(image.pixels == pixels) << width << " x " << height;
    }
  }
}

// How many different pictures there are. Expects many colours in each.
std::size_t CountPictures(const std::vector<const char*>& shapes,
                          const std::vector<const char*>& seeds) {
  std::set<std::string> pictures;
  for (const char* shape : shapes) {
    for (const char* seed : seeds) {
      const std::string picture = DrawPicture(shape, seed, 64, 48);
      EXPECT_GT(CountColours(Decode(picture)), 40u) << shape << ", " << seed;
      pictures.insert(picture);
    }
  }
  return pictures.size();
}

TEST(PictureTest, EveryShapeLooksDifferent) {
  EXPECT_EQ(CountPictures(
                {"chair", "table", "sofa", "bed", "shelf", "lamp", "house", "tower", "car", "tree"},
                {"seed"}),
            10u);
}

TEST(PictureTest, SeedDecidesThePicture) {
  EXPECT_EQ(CountPictures({"chair"}, {"a", "a", "b"}), 2u);
}

TEST(PictureTest, DrawsAKnownShapeForAnUnknownOne) {
  EXPECT_EQ(CountPictures({""}, {"a", "b", "c", "d", "e"}), 5u);
}

TEST(PictureTest, CentresTheModelWithinTheMargin) {
  for (const char* shape : {"chair", "tower", "car", "tree"}) {
    const Image image = Decode(DrawPicture(shape, "seed", 120, 90));
    const auto row = [&image](std::size_t y) { return image.pixels.substr(y * 360, 360); };
    const auto is_background = [&](std::size_t x) {
      for (std::size_t y = 0; y < 90; ++y) {
        if (row(y).substr(x * 3, 3) != row(y).substr(0, 3)) return false;
      }
      return true;
    };
    std::size_t left = 0;
    while (left < 119 && is_background(left)) ++left;
    std::size_t right = 0;
    while (right < 119 && is_background(119 - right)) ++right;
    EXPECT_GE(left, 8u) << shape;
    EXPECT_NEAR(static_cast<double>(left), static_cast<double>(right), 2) << shape;
    // The first and last rows show only the background, with one colour a row.
    for (const std::size_t y : {0U, 1U, 88U, 89U}) {
      EXPECT_EQ(row(y).substr(3), row(y).substr(0, 357)) << shape << ", row " << y;
    }
    EXPECT_NE(row(45).substr(3), row(45).substr(0, 357)) << shape;
  }
}

using ThumbnailTest = ContentTest;

TEST_F(ThumbnailTest, HasTheRequestedSize) {
  const Image by_default = Decode(Get("/thumbnail?mid=m-1001").body);
  EXPECT_EQ(by_default.width, 256u);
  EXPECT_EQ(by_default.height, 192u);
  const RawResponse small = Get("/thumbnail?mid=m-1001&rtyp=st");
  EXPECT_EQ(small.Header("Content-Type"), "image/png");
  EXPECT_EQ(Decode(small.body).pixels, by_default.pixels);
  const Image large = Decode(Get("/thumbnail?mid=m-1001&rtyp=lt").body);
  EXPECT_EQ(large.width, 640u);
  EXPECT_EQ(large.height, 480u);
}

TEST_F(ThumbnailTest, DiffersBetweenItems) {
  std::set<std::string> pictures;
  for (int mid = 1001; mid <= 1100; ++mid) {
    pictures.insert(Get("/thumbnail?mid=m-" + std::to_string(mid)).body);
  }
  for (const char* mid : {"c-1", "c-2", "c-3"}) {
    pictures.insert(Get("/thumbnail?mid=" + std::string(mid)).body);
  }
  EXPECT_EQ(pictures.size(), 103u);
}

TEST_F(ThumbnailTest, RefusesUnknownItemSizeAndParameter) {
  EXPECT_THAT(GetError("/thumbnail?mid=m-9999", 404), HasSubstr("m-9999"));
  EXPECT_THAT(GetError("/thumbnail?mid=m-1001&rtyp=xl", 404), HasSubstr("'xl'"));
  EXPECT_THAT(GetError("/thumbnail", 400), HasSubstr("'mid' is missing"));
  EXPECT_THAT(GetError("/thumbnail?mid=m-1001&width=5", 400), HasSubstr("'width'"));
}

}  // namespace
}  // namespace stowra_emulator

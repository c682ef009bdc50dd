// The buffer: its size for each colour layout, deep copies, failures.
#include "enhance/lumo_image.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>

#include "heap.h"
#include "test_lumo.h"

namespace {

// The layouts are numbers in files and interfaces of others.
static_assert(sizeof(LUMO_IMG_COLOR) == 4);
static_assert(LUMO_IMG_GRAY == 0);
static_assert(LUMO_IMG_BGR == 1);
static_assert(LUMO_IMG_RGB == 2);
static_assert(LUMO_IMG_BGRA == 3);
static_assert(LUMO_IMG_RGBA == 4);

static_assert(!std::is_default_constructible_v<LumoImage>, "every image has a size");
// What is about to go can be copied as everything else: nothing moves.
static_assert(std::is_move_constructible_v<LumoImage> && std::is_move_assignable_v<LumoImage>);
static_assert(!std::is_nothrow_move_constructible_v<LumoImage>);
static_assert(!std::is_nothrow_move_assignable_v<LumoImage>);

TEST(LumoImage, FieldsAreInOrder) {
  EXPECT_EQ(offsetof(LumoImage, width), 0u);
  EXPECT_EQ(offsetof(LumoImage, height), 4u);
  EXPECT_EQ(offsetof(LumoImage, channels), 8u);
  EXPECT_EQ(offsetof(LumoImage, color), 12u);
  EXPECT_EQ(offsetof(LumoImage, data), 16u);
}

TEST(LumoImage, ColourLayoutGivesTheChannels) {
  const struct {
    int color;
    int channels;
  } kCases[] = {
      {LUMO_IMG_GRAY, 1},
      {LUMO_IMG_BGR, 3},
      {LUMO_IMG_RGB, 3},
      {LUMO_IMG_BGRA, 4},
      {LUMO_IMG_RGBA, 4},
      {5, 4},
      {100, 4},
      {-1, 4},
      {std::numeric_limits<std::int32_t>::min(), 4},
  };
  for (const auto& c : kCases) {
    const LumoImage image(5, 3, static_cast<LUMO_IMG_COLOR>(c.color));
    EXPECT_EQ(image.width, 5);
    EXPECT_EQ(image.height, 3);
    EXPECT_EQ(image.color, c.color);
    EXPECT_EQ(image.channels, c.channels) << c.color;
    EXPECT_EQ(image.SizeBytes(), 5 * 3 * c.channels) << c.color;
    EXPECT_NE(image.data, nullptr);
  }
}

TEST(LumoImage, SizeIsFormedIn64Bits) {
  LumoImage image(1, 1, LUMO_IMG_RGBA);
  image.width = 100000;
  image.height = 100000;
  EXPECT_EQ(image.SizeBytes(), 40000000000);  // 10^5 x 10^5 x 4
}

TEST(LumoImage, LaterWritesToTheCallersBytesDoNotShow) {
  unsigned char pixels[] = {1, 2, 3, 4, 5, 6};
  const LumoImage image(2, 1, LUMO_IMG_RGB, pixels);
  std::memset(pixels, 99, sizeof pixels);
  EXPECT_EQ(bytesOf(image), (std::vector<int>{1, 2, 3, 4, 5, 6}));
}

TEST(LumoImage, CopyIsDeep) {
  const unsigned char pixels[] = {1, 2, 3, 4, 5, 6};
  LumoImage image(2, 1, LUMO_IMG_BGR, pixels);
  const LumoImage copy(image);
  image.data[0] = 99;
  EXPECT_NE(copy.data, image.data);
  EXPECT_EQ(copy.width, 2);
  EXPECT_EQ(copy.height, 1);
  EXPECT_EQ(copy.channels, 3);
  EXPECT_EQ(copy.color, LUMO_IMG_BGR);
  EXPECT_EQ(bytesOf(copy), (std::vector<int>{1, 2, 3, 4, 5, 6}));
}

TEST(LumoImage, CopyTakesTheChannelsAsTheyStand) {
  const unsigned char pixels[] = {1, 2, 3};
  LumoImage image(1, 1, LUMO_IMG_BGR, pixels);
  image.color = LUMO_IMG_GRAY;  // which would give 1
  const LumoImage copy(image);
  EXPECT_EQ(copy.channels, 3);
  EXPECT_EQ(bytesOf(copy), (std::vector<int>{1, 2, 3}));
}

TEST(LumoImage, AssignmentIsDeepAndReturnsTheImage) {
  const unsigned char pixels[] = {1, 2, 3, 4};
  const LumoImage source(1, 1, LUMO_IMG_RGBA, pixels);
  LumoImage image(7, 5, LUMO_IMG_GRAY);
  EXPECT_EQ(&(image = source), &image);
  EXPECT_NE(image.data, source.data);
  EXPECT_EQ(image.width, 1);
  EXPECT_EQ(image.height, 1);
  EXPECT_EQ(image.channels, 4);
  EXPECT_EQ(image.color, LUMO_IMG_RGBA);
  EXPECT_EQ(bytesOf(image), (std::vector<int>{1, 2, 3, 4}));
}

TEST(LumoImage, AssignmentTakesTheChannelsAsTheyStand) {
  const unsigned char pixels[] = {1, 2, 3};
  LumoImage source(1, 1, LUMO_IMG_BGR, pixels);
  source.color = LUMO_IMG_GRAY;  // which would give 1
  LumoImage image(7, 5, LUMO_IMG_RGBA);
  image = source;
  EXPECT_EQ(image.channels, 3);
  EXPECT_EQ(image.color, LUMO_IMG_GRAY);
  EXPECT_EQ(bytesOf(image), (std::vector<int>{1, 2, 3}));
}

TEST(LumoImage, ImageThatIsAboutToGoIsCopiedAsAnyOther) {
  LumoImage image = grayImage({{1, 2, 3}});
  const LumoImage constructed(std::move(image));
  LumoImage assigned(7, 5, LUMO_IMG_RGB);
  assigned = std::move(image);
  EXPECT_EQ(bytesOf(image), (std::vector<int>{1, 2, 3}));
  EXPECT_EQ(bytesOf(constructed), (std::vector<int>{1, 2, 3}));
  EXPECT_EQ(bytesOf(assigned), (std::vector<int>{1, 2, 3}));
  EXPECT_NE(constructed.data, image.data);
  EXPECT_NE(assigned.data, image.data);
}

TEST(LumoImage, BuffersAreHadAndGivenBack) {
  const LumoImage source = grayImage({{1, 2, 3}});
  const struct {
    const char* name;
    void (*action)(const LumoImage& source);
    const char* events;
  } kCases[] = {
      {"image", [](const LumoImage&) { LumoImage(5, 4, LUMO_IMG_RGB); }, "+-"},
      {"image of bytes", [](const LumoImage& from) { LumoImage(3, 1, LUMO_IMG_GRAY, from.data); },
       "+-"},
      {"copy", [](const LumoImage& from) { LumoImage copy(from); }, "+-"},
      {"assignment, which gives the old one back first",
       [](const LumoImage& from) {
         LumoImage image(7, 5, LUMO_IMG_GRAY);
         image = from;
       },
       "+-+-"},
  };
  for (const auto& c : kCases) {
    std::string events;
    {
      const HeapWatch heap;
      c.action(source);
      events = heap.events();
    }
    EXPECT_EQ(events, c.events) << c.name;
  }
}

TEST(LumoImage, SelfAssignmentKeepsTheSizeOnlyIsKept) {
  LumoImage image(100, 50, LUMO_IMG_RGB);
  LumoImage& same = image;
  std::string events;
  {
    const HeapWatch heap;
    image = same;
    events = heap.events();
  }
  EXPECT_EQ(events, "-+") << "the pixels are gone before there is room for any";
  EXPECT_EQ(image.width, 100);
  EXPECT_EQ(image.height, 50);
  EXPECT_EQ(image.channels, 3);
  EXPECT_EQ(image.color, LUMO_IMG_RGB);
  ASSERT_NE(image.data, nullptr);
  std::memset(image.data, 1, 100 * 50 * 3);  // whatever it holds, it is there and large enough
  EXPECT_EQ(bytesOf(image), std::vector<int>(100 * 50 * 3, 1));
}

TEST(LumoImage, DestructionClearsTheFields) {
  alignas(LumoImage) unsigned char storage[sizeof(LumoImage)];
  std::memset(storage, 0xAB, sizeof storage);
  (new (storage) LumoImage(3, 2, LUMO_IMG_RGBA))->~LumoImage();

  std::int32_t fields[4];
  std::memcpy(fields, storage, sizeof fields);
  const unsigned char* data = storage;
  std::memcpy(&data, storage + offsetof(LumoImage, data), sizeof data);
  EXPECT_EQ(fields[0], 0) << "width";
  EXPECT_EQ(fields[1], 0) << "height";
  EXPECT_EQ(fields[2], 0) << "channels";
  EXPECT_EQ(fields[3], LUMO_IMG_RGBA) << "the colour keeps its value";
  EXPECT_EQ(data, nullptr);
}

TEST(LumoImage, EmptySizesAreAllowed) {
  const struct { int width, height; } kCases[] = {{0, 0}, {0, 5}, {5, 0}};
  for (const auto& c : kCases) {
    const LumoImage image(c.width, c.height, LUMO_IMG_RGB);
    const LumoImage copy(image);
    EXPECT_EQ(copy.width, c.width);
    EXPECT_EQ(copy.height, c.height);
    EXPECT_EQ(copy.SizeBytes(), 0);
  }
}

TEST(LumoImage, ImpossibleSizesThrow) {
  constexpr int kMost = std::numeric_limits<int>::max();
  const struct {
    int width, height;
    LUMO_IMG_COLOR color;
  } kCases[] = {
      {-1, 1, LUMO_IMG_GRAY},         {1, -1, LUMO_IMG_RGB},
      {-kMost, kMost, LUMO_IMG_GRAY}, {kMost, kMost, LUMO_IMG_RGB},  // 3 x 2^62 is more than 2^63
      {kMost, kMost, LUMO_IMG_RGBA},
  };
  for (const auto& c : kCases) {
    EXPECT_THROW(LumoImage(c.width, c.height, c.color), std::bad_alloc)
        << c.width << " x " << c.height << " in layout " << c.color;
    const unsigned char pixel[4] = {};
    EXPECT_THROW(LumoImage(c.width, c.height, c.color, pixel), std::bad_alloc);
  }
}

}  // namespace

#include "support/tspl_commands.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

const std::string kPreamble(64, '\n');
const std::string kPage = std::string("CLS\r\nBITMAP 0,0,1,2,0,\n\n\r\nPRINT 1,1\r\n");

TEST(TsplCommands, TakesAnyNumberOfDocuments) {
  const std::vector<std::string> page{"CLS", "BITMAP 0,0,1,2,0,", "PRINT 1,1"};
  std::vector<std::string> expected;
  std::string stream;
  for (int documents = 1; documents <= 3; ++documents) {
    stream += kPreamble + kPage;
    expected.insert(expected.end(), page.begin(), page.end());
    const support::Commands commands = support::commandsOf(stream);
    EXPECT_EQ(commands.fault, "");
    EXPECT_EQ(commands.documents, documents);
    EXPECT_EQ(commands.lines(), expected);
    EXPECT_EQ(commands.list[1].data, "\n\n");
  }
}

TEST(TsplCommands, FindsWhereADocumentIsBroken) {
  const std::string good = kPreamble + kPage;
  const struct {
    const char* what;
    std::string stream;
    std::size_t at;
  } cases[] = {
      {"nothing", "", 0},
      {"no preamble", kPage, 0},
      {"a short preamble", kPreamble.substr(1) + kPage, 0},
      {"a short preamble of the second document", good + kPreamble.substr(1) + kPage, good.size()},
      {"a preamble that is too long", good + kPreamble + "\n" + kPage, good.size() + 64},
      {"an unknown command", good + "FEED 1\r\n", good.size()},
      {"dots cut short", good.substr(0, 87), 69},
  };
  for (const auto& c : cases) {
    const std::string fault = support::commandsOf(c.stream).fault;
    EXPECT_TRUE(fault.starts_with("at byte " + std::to_string(c.at) + ": "))
        << c.what << ": " << fault;
  }
}

}  // namespace

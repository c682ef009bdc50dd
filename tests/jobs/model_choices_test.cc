// Every choice of every option of every printer model does what it is for: the commands of its own
// are those that the table says, all others stay as they are without it, and no choice is dead.
#include <cups/ppd.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <functional>
#include <map>
#include <memory>
#include <ostream>
#include <set>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "filter_job.h"
#include "support/differences.h"
#include "support/folder.h"
#include "support/raster.h"
#include "support/tspl_commands.h"

namespace {

using Lines = std::vector<std::string>;

const char* const kModels[] = {"label-203dpi", "label-300dpi", "stencil-a4-300dpi"};

constexpr unsigned kWidth = 192;
constexpr unsigned kHeight = 96;

struct Option {
  std::string standard;  ///< the choice that the model starts with
  std::vector<std::string> choices;
};

/// The options that a model's PPD offers, whatever they are.
std::map<std::string, Option> optionsOf(const std::string& model) {
  const std::string path = TARVO_PPD_DIR "/tarvo-" + model + ".ppd";
  const std::unique_ptr<ppd_file_t, decltype(&ppdClose)> ppd(ppdOpenFile(path.c_str()), &ppdClose);
  if (!ppd) throw std::runtime_error("cannot read " + path);
  std::map<std::string, Option> options;
  for (ppd_option_t* option = ppdFirstOption(ppd.get()); option != nullptr;
       option = ppdNextOption(ppd.get())) {
    Option& found = options[option->keyword];
    found.standard = option->defchoice;
    for (int i = 0; i < option->num_choices; ++i) {
      // "Custom" is a way to give a size, not a size.
      const std::string choice = option->choices[i].choice;
      if (choice != "Custom") found.choices.push_back(choice);
    }
  }
  return options;
}

/// A page on which each choice of a picture's option shows: all shades from paper to ink, and
/// strokes with gray edges below.
std::string raster() {
  support::Page page = support::grayPage(kWidth, kHeight, support::Drawing::Gradient);
  const auto text = support::draw(support::Drawing::Text, kWidth, kHeight / 2);
  std::copy(text.begin(), text.end(), page.pixels.end() - static_cast<std::ptrdiff_t>(text.size()));
  return support::rasterFile({page});
}

struct Sent {
  std::string stream;
  std::vector<support::Command> commands;
  std::string recording;  ///< empty when there is none
  std::size_t pictures;   ///< of the page, that were kept
};

Sent print(const std::string& model, const std::string& options) {
  jobs::FilterJob job;
  job.setPpd(support::readFile(TARVO_PPD_DIR "/tarvo-" + model + ".ppd").value());
  support::Program program = job.program(options);
  program.input = support::PipedBytes{raster()};
  const support::Outcome outcome = job.runAlone(program);
  EXPECT_EQ(outcome.ending(), "exit status 0") << options << "\n" << outcome.error;
  const support::Commands commands = support::commandsOf(outcome.output);
  EXPECT_EQ(commands.fault, "") << options;
  Sent sent{outcome.output, commands.list, "", 0};
  for (const std::string& name : support::namesIn(job.spool())) {
    if (name.starts_with("tarvo-")) sent.recording = support::readFile(job.spool() / name).value();
    if (name.ends_with(".bmp")) ++sent.pictures;
  }
  return sent;
}

bool isOneOf(const std::string& line, const Lines& starts) {
  return std::any_of(starts.begin(), starts.end(),
                     [&](const std::string& start) { return line.starts_with(start + " "); });
}

Lines only(const Sent& sent, const Lines& starts, bool wanted = true) {
  Lines lines;
  for (const support::Command& command : sent.commands) {
    if (isOneOf(command.line, starts) == wanted) lines.push_back(command.line);
  }
  return lines;
}

std::string dots(const Sent& sent) {
  std::string dots;
  for (const support::Command& command : sent.commands) dots += command.data;
  return dots;
}

std::string mirrored(const std::string& dots) {
  std::string result = dots;
  constexpr std::size_t kStride = kWidth / 8;
  for (std::size_t row = 0; row + kStride <= result.size(); row += kStride) {
    std::reverse(result.begin() + static_cast<std::ptrdiff_t>(row),
                 result.begin() + static_cast<std::ptrdiff_t>(row + kStride));
  }
  for (char& byte : result) {
    const unsigned bits = static_cast<unsigned char>(byte);
    unsigned reversed = 0;
    for (unsigned bit = 0; bit < 8; ++bit) reversed |= (bits >> bit & 1U) << (7 - bit);
    byte = static_cast<char>(reversed);
  }
  return result;
}

/// What the choices of an option are for.
struct Rule {
  const char* option;
  /// Other options of the job, where the option does not act with the model's own.
  const char* base;
  /// The commands that are the option's own, by the words they begin with.
  Lines own;
  /// Those that a choice sends.
  std::function<Lines(const std::string& choice)> sends;
  /// True when the choices differ in the dots, and in nothing else.
  bool dots = false;
  /// Choices that send the same as one another; no others may.
  std::set<std::string> twins = {};
};

Lines nothing(const std::string&) { return {}; }

const Rule kRules[] = {
    // The paper's kind shows with a gap's height above 0, which all models have.
    {"PaperType",
     "GapsHeight=3",
     {"GAP", "BLINE"},
     [](const std::string& choice) {
       static const std::map<std::string, Lines> kLines = {{"LabelGaps", {"GAP 3.0 mm, 0.0 mm"}},
                                                           {"LabelMark", {"BLINE 3.0 mm, 0.0 mm"}},
                                                           {"Continue", {"GAP 0, 0"}},
                                                           {"Normal", {}}};
       return kLines.at(choice);
     }},
    // Continuous paper, where stencils start, has no gap.
    {"GapsHeight",
     "PaperType=LabelGaps",
     {"GAP", "BLINE"},
     [](const std::string& choice) {
       return Lines{choice == "0" ? "GAP 0, 0" : "GAP " + choice + ".0 mm, 0.0 mm"};
     }},
    {"MediaMethod",
     "",
     {"SET RIBBON"},
     [](const std::string& choice) {
       static const std::map<std::string, Lines> kLines = {
           {"Direct", {"SET RIBBON OFF"}}, {"Transfer", {"SET RIBBON ON"}}, {"Normal", {}}};
       return kLines.at(choice);
     }},
    {"PostAction",
     "",
     {"SET TEAR", "SET PEEL", "SET CUTTER"},
     [](const std::string& choice) {
       static const std::map<std::string, Lines> kLines = {
           {"None", {"SET TEAR OFF", "SET PEEL OFF", "SET CUTTER OFF"}},
           {"TearOff", {"SET TEAR ON", "SET PEEL OFF", "SET CUTTER OFF"}},
           {"PeelOff", {"SET TEAR OFF", "SET PEEL ON", "SET CUTTER OFF"}},
           {"Cut", {"SET TEAR OFF", "SET PEEL OFF", "SET CUTTER ON"}},
           {"PartialCut", {"SET TEAR OFF", "SET PEEL OFF", "SET CUTTER ON"}},
           {"Unchanged", {}}};
       return kLines.at(choice);
     },
     false,
     // How far a cut goes is set in the printer.
     {"Cut", "PartialCut"}},
    {"PrintSpeed",
     "",
     {"SPEED"},
     [](const std::string& choice) {
       return choice == "Normal" ? Lines{} : Lines{"SPEED " + choice};
     }},
    {"Darkness",
     "",
     {"DENSITY"},
     [](const std::string& choice) {
       return choice == "-1" ? Lines{} : Lines{"DENSITY " + choice};
     }},
    {"Origin",
     "",
     {"DIRECTION"},
     [](const std::string& choice) {
       return Lines{choice == "Rotation180" ? "DIRECTION 1,0" : "DIRECTION 0,0"};
     }},
    {"HalftoneType", "", {}, nothing, true},
    // At the ends of the scale most halftones have nothing but paper, or nothing but ink, left;
    // these
    // keep a trace of the page up to the last step.
    {"Brightness", "HalftoneType=Tattoo", {}, nothing, true},
    {"MirrorImage", "HalftoneType=None", {}, nothing, true},
    {"NegativeImage", "HalftoneType=Tattoo", {}, nothing, true},
    {"RecordPrinterCommands", "", {}, nothing},
    {"KeepPages", "", {}, nothing, false, {"True", "False"}},
    // These act before the filter, where the page is made, and the raster here stays the same.
    {"CenterOfPixel", "", {}, nothing},
    {"PageSize", "", {}, nothing},
    {"PageRegion", "", {}, nothing},
    {"Resolution", "", {}, nothing},
};

bool actsBefore(const std::string& option) {
  return option == "PageSize" || option == "PageRegion" || option == "Resolution" ||
         option == "CenterOfPixel";
}

void PrintTo(const Rule& rule, std::ostream* stream) { *stream << rule.option; }

class ModelChoices : public testing::TestWithParam<std::tuple<const char*, Rule>> {
 protected:
  const std::string model_ = std::get<0>(GetParam());
  const Rule& rule_ = std::get<1>(GetParam());

  Sent printChoice(const std::string& choice) const {
    return print(model_, std::string(rule_.base) + " " + rule_.option + "=" + choice);
  }
};

INSTANTIATE_TEST_SUITE_P(All, ModelChoices,
                         testing::Combine(testing::ValuesIn(kModels), testing::ValuesIn(kRules)),
                         [](const auto& test) {
                           std::string name = std::get<0>(test.param);
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name + "_" + std::get<1>(test.param).option;
                         });

TEST_P(ModelChoices, ChangeWhatTheyAreForAndNothingElse) {
  const std::map<std::string, Option> options = optionsOf(model_);
  ASSERT_TRUE(options.contains(rule_.option)) << model_ << " does not offer " << rule_.option;
  const Option& option = options.at(rule_.option);
  ASSERT_THAT(option.choices, testing::Contains(option.standard));

  const Sent standard = print(model_, rule_.base);
  std::map<std::string, std::string> seen;  // stream and recording to the choice that gave it
  for (const std::string& choice : option.choices) {
    SCOPED_TRACE(std::string(rule_.option) + "=" + choice);
    const Sent sent = printChoice(choice);

    EXPECT_EQ(only(sent, rule_.own), rule_.sends(choice));
    EXPECT_EQ(only(sent, rule_.own, false), only(standard, rule_.own, false));
    if (!rule_.dots) {
      EXPECT_EQ(support::firstDifference(dots(standard), dots(sent)), "");
    }
    if (choice == option.standard) {
      EXPECT_EQ(support::firstDifference(standard.stream, sent.stream), "")
          << "the choice that the model starts with, named";
    }
    if (actsBefore(rule_.option)) continue;

    const std::string earlier = seen.emplace(sent.stream + sent.recording, choice).first->second;
    const bool twins = rule_.twins.contains(choice) && rule_.twins.contains(earlier);
    EXPECT_TRUE(earlier == choice || twins) << "prints the same as " << earlier;
  }
}

class Model : public testing::TestWithParam<const char*> {
 protected:
  const std::string model_ = GetParam();
};

INSTANTIATE_TEST_SUITE_P(All, Model, testing::ValuesIn(kModels), [](const auto& test) {
  std::string name = test.param;
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
});

TEST_P(Model, OffersNoOptionWhoseChoicesAreNotTried) {
  std::set<std::string> tried;
  for (const Rule& rule : kRules) tried.insert(rule.option);
  std::set<std::string> offered;
  for (const auto& [keyword, option] : optionsOf(model_)) offered.insert(keyword);
  EXPECT_EQ(offered, tried);
}

TEST_P(Model, MirrorsEachRow) {
  const std::string straight = dots(print(model_, "HalftoneType=None"));
  const std::string turned = dots(print(model_, "HalftoneType=None MirrorImage=True"));
  EXPECT_EQ(support::firstDifference(mirrored(straight), turned), "");
}

TEST_P(Model, BrightnessAddsInkStepByStep) {
  const auto inkOf = [](const std::string& dots) {
    long ink = 0;  // a bit of 0
    for (const char byte : dots) ink += 8 - std::popcount(static_cast<unsigned char>(byte));
    return ink;
  };
  const Option brightness = optionsOf(model_).at("Brightness");
  std::vector<int> choices;
  for (const std::string& choice : brightness.choices) choices.push_back(std::stoi(choice));
  std::sort(choices.begin(), choices.end());
  long last = -1;
  for (const int choice : choices) {
    const long ink =
        inkOf(dots(print(model_, "HalftoneType=Tattoo Brightness=" + std::to_string(choice))));
    EXPECT_GT(ink, last) << "Brightness=" << choice;
    if (choice == choices.front()) {
      EXPECT_EQ(ink, 0);
    }
    last = ink;
  }
  EXPECT_EQ(last, long{kWidth} * kHeight) << "the last is all ink";
}

TEST_P(Model, BrightnessActsWithEachHalftone) {
  const Option halftones = optionsOf(model_).at("HalftoneType");
  for (const std::string& halftone : halftones.choices) {
    const std::string same = dots(print(model_, "HalftoneType=" + halftone));
    for (const char* brightness : {"-10", "10"}) {
      EXPECT_NE(dots(print(model_, "HalftoneType=" + halftone + " Brightness=" + brightness)), same)
          << halftone << " " << brightness;
    }
  }
}

TEST_P(Model, KeepsPicturesOfThePageUnlessAskedNotTo) {
  EXPECT_EQ(print(model_, "").pictures, 2U);
  EXPECT_EQ(print(model_, "KeepPages=True").pictures, 2U);
  EXPECT_EQ(print(model_, "KeepPages=False").pictures, 0U);
  EXPECT_EQ(print(model_, "noKeepPages").pictures, 0U) << "as the spooler says it";
}

TEST_P(Model, RecordsWhatIsSentWhenAskedTo) {
  EXPECT_EQ(print(model_, "RecordPrinterCommands=0").recording, "");
  const Sent sent = print(model_, "RecordPrinterCommands=1");
  EXPECT_EQ(support::firstDifference(sent.stream, sent.recording), "");
}

}  // namespace

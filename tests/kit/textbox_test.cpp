// Text in boxes, compared with what the library measures and draws line by line.

#include <gmock/gmock.h>
#include <zirk/kit/textbox.h>

#include <string>
#include <utility>

#include "helpers/logged.h"
#include "helpers/rows.h"
#include "kit/stage.h"
#include "support/allocations.h"

namespace ZIRK::kit {
namespace {

/// The lines of a box as they are in the text, with `|` between them.
std::string LinesOf(const TextBox& box, const std::string& text) {
  std::string lines;
  for (size_t i = 0; i < box.GetLineCount(); ++i) {
    const TextLine line = box.GetLine(i);
    if (i > 0) lines += '|';
    lines += text.substr(line.begin, line.end - line.begin);
  }
  if (box.IsCut()) lines += "...";
  return lines;
}

struct Broken {
  const char* name;
  std::string text;
  std::string lines;
  std::string width = "";  ///< As wide as this text; unlimited where it is empty.
  int maxLines = 0, height = kUnlimited;
};

class Breaking : public helpers::Rows<Broken> {};
ROWS(Breaking, Broken{"nothing", "", ""}, Broken{"one line", "a b", "a b"},
     Broken{"exactly fitting", "aaa bbb ccc", "aaa bbb |ccc", "aaa bbb"},
     Broken{"spaces hang over", "aaa     bbb", "aaa     |bbb", "aaa"},
     Broken{"spaces before a word count", "  aaa", "  |aaa", "aaa"},
     Broken{"hyphen and punctuation", "aa-bb (cc). dd", "aa-|bb |(cc). |dd", "(cc)."},
     Broken{"no break at a no-break space", "a b\u00A0c d", "a |b\u00A0c |d", "b\u00A0c"},
     Broken{"long word", "a bbbbbbb c", "a |bbb|bbb|b c", "bbb"},
     Broken{"narrower than any character", "ab c", "a|b |c", "."},
     Broken{"ideographs", "日本語、日本", "日本|語、|日本", "日本"},
     Broken{"line ends", "a\nb\r\nc\rd\u2028e\u0085f\f\n", "a|b|c|d|e|f||"},
     Broken{"broken characters", std::string("a\xFF\xC3") + '\0' + "b \xE2\x82|",
            "a\xFF\xC3" + std::string(1, '\0') + "b \xE2\x82|"},
     Broken{"so many lines", "a b c d e f g", "a b c |d...", "a b c", 2},
     Broken{"nothing more to be seen", "a\nb\n\n", "a|b", "", 2},
     Broken{"cut at a line end", "a\nb\nc", "a|b...", "", 2},
     Broken{"so high", "aaa bbb ccc", "aaa |b...", "aaa", 0, 50},
     Broken{"one line is always there", "a\nb", "a...", "", 0, 1});

TEST_P(Breaking, AsTheRulesSay) {
  const Broken& row = GetParam();
  TextStyle style;
  if (!row.width.empty()) style.width = WidthOf(row.width);
  style.maxLines = row.maxLines;
  style.height = row.height;
  TextBox box;
  ASSERT_TRUE(box.SetText(Sans(), row.text, white, style));
  EXPECT_EQ(LinesOf(box, row.text), row.lines);
}

TEST(TextBox, DrawsLinesAsTheLibraryDoesWhereTheyAreAligned) {
  constexpr VuColor kColor = 0xC0FFC040;
  const std::string lines[] = {"AVATAR To", "LT, Würgen", "WA \u2026"};
  constexpr int kWidth = 140, kHeight = 100, kGap = 7;
  const int pitch = Sans().GetOneLineHeight() + kGap,
            height = 2 * pitch + Sans().GetOneLineHeight();
  Stage stage;
  for (int align = 0; align < 3; ++align) {
    TextStyle style;
    style.width = kWidth;
    style.height = kHeight;
    style.align = TextAlign(align);
    style.verticalAlign = VerticalAlign(align);
    style.lineGap = kGap;
    TextBox box;
    ASSERT_TRUE(box.SetText(Sans(), "AVATAR To \nLT, Würgen\nWA \u2026 ", kColor, style));
    EXPECT_EQ(box.GetHeight(), height);
    EXPECT_EQ(box.GetWidth(), WidthOf(lines[1]));
    // Lines out of sight are left out, those seen in part are not.
    for (const auto& target : {stage.drawn.get(), stage.expected.get()})
      target->SetClippingRect({0, align == 2 ? 40 : 0, 400, align == 1 ? 40 : 200});
    box.Draw(*stage.drawn, {9, 5});
    for (int i = 0; i < 3; ++i) {
      const VuPoint corner{(kWidth - WidthOf(lines[i])) * align / 2,
                           (kHeight - height) * align / 2 + i * pitch};
      stage.expected->DrawText(Sans(), lines[i].c_str(), {9 + corner.x, 5 + corner.y}, kColor);
      const TextLine line = box.GetLine(static_cast<size_t>(i));
      EXPECT_EQ(line.box, (VuRect{corner.x, corner.y, WidthOf(lines[i]), pitch - kGap}));
      EXPECT_EQ(line.baseline, corner.y + Sans().GetAscent());
    }
    stage.Compare();
  }
}

TEST(TextBox, SharesTheBaseLineAmongFontsAndKeepsWordsOfSeveralTogether) {
  const VuFont large(helpers::FontFile("sansbold.ttf").c_str(), 0, 30);
  const TextRun runs[] = {
      {"one tw", &Sans(), 0xFFFF0000}, {"ooo", &large, white}, {"o", &Sans(), white}};
  const int width = WidthOf("tw") + large.GetOneLineWidth("ooo") + WidthOf("o");
  TextStyle style;
  style.width = width;
  TextBox box;
  ASSERT_TRUE(box.SetText(runs, 3, style));
  ASSERT_EQ(LinesOf(box, "one twoooo"), "one |twoooo");
  EXPECT_EQ(box.GetLine(1).box,
            (VuRect{0, Sans().GetOneLineHeight(), width, large.GetOneLineHeight()}));
  Stage stage;
  const VuTransform turned(30, 20, 1, 1, 10);
  box.Draw(*stage.drawn, {3, 4}, turned);
  const int base = 4 + box.GetLine(1).baseline;
  const auto expect = [&](const VuFont& font, const char* text, VuPoint at, VuColor color) {
    stage.expected->DrawText(font, text, at, color, turned);
  };
  expect(Sans(), "one", {3, 4}, 0xFFFF0000);
  expect(Sans(), "tw", {3, base - Sans().GetAscent()}, 0xFFFF0000);
  expect(large, "ooo", {3 + WidthOf("tw"), base - large.GetAscent()}, white);
  expect(Sans(), "o", {3 + width - WidthOf("o"), base - Sans().GetAscent()}, white);
  stage.Compare();

  style.maxLines = 1;
  ASSERT_TRUE(box.SetText(runs, 3, style));
  EXPECT_LE(box.GetWidth(), width);
  EXPECT_FALSE(box.SetText(std::vector<TextRun>(1).data(), 1, style)) << "no font";
  EXPECT_EQ(box.GetLineCount(), 0u);
}

TEST(TextBox, WidensSpacesAfterTheLastTab) {
  const std::string text = "a\tb cc ddd eeeeeeeeee\nf g";
  TextStyle style;
  style.align = TextAlign::Justify;
  style.tabWidth = 50;
  style.width = 50 + WidthOf("b cc ddd") + 11;
  TextBox box;
  ASSERT_TRUE(box.SetText(Sans(), text, white, style));
  ASSERT_EQ(LinesOf(box, text), "a\tb cc ddd |eeeeeeeeee|f g");
  const auto left = [&](char c) { return box.GetCharacter(text.find(c)).x; };
  EXPECT_EQ(left('b'), 50);
  EXPECT_EQ(left('c'), 50 + WidthOf("b ") + 5);
  EXPECT_EQ(left('d'), 50 + WidthOf("b cc ") + 11);
  EXPECT_EQ(box.GetLine(0).box.width, style.width);
  EXPECT_EQ(left('g'), WidthOf("f ")) << "the last line of a paragraph";
}

TEST(TextBox, KnowsEveryCharactersPlace) {
  const std::string text = "AVATAR To. Wörgl 日本, LT\nV";
  TextStyle style;
  style.width = WidthOf("AVATAR To. W");
  style.align = TextAlign::Right;
  TextBox box;
  ASSERT_TRUE(box.SetText(Sans(), text, white, style));
  for (size_t index = 0; index < box.GetLineCount(); ++index) {
    const TextLine line = box.GetLine(index);
    for (size_t at = line.begin, next; at < line.end; at = next) {
      next = at + 1;
      while (next < text.size() && (text[next] & 0xC0) == 0x80) ++next;
      const int right = WidthOf(text.substr(line.begin, next - line.begin));
      const VuRect place = box.GetCharacter(at);
      EXPECT_EQ(place.x, line.box.x + right - WidthOf(text.substr(at, next - at)));
      EXPECT_EQ(place.y, line.box.y);
      EXPECT_EQ(place, box.GetCharacter(next - 1)) << "inside the character";
      // Kerning lets characters overlap.
      const int y = place.y + place.height - 1, middle = place.x + place.width / 2;
      EXPECT_EQ(box.FindCharacter({middle, y}), at);
      EXPECT_EQ(box.FindCaret({place.x + 1, y}), at);
      EXPECT_EQ(box.FindCaret({place.x + place.width - 2, y}),
                next == line.end && text[at] == ' ' ? at : next);
    }
    const VuRect& b = line.box;
    EXPECT_EQ(box.FindCaret({-9, b.y}), line.begin);
    EXPECT_EQ(box.FindCaret({999, b.y}),
              line.end - (index + 1 < box.GetLineCount() && text[line.end - 1] == ' '));
    EXPECT_EQ(box.FindCharacter({b.x - 1, b.y}), TextBox::npos);
  }
  const VuRect end = box.GetCharacter(text.size());
  EXPECT_EQ(end, box.GetCharacter(TextBox::npos));
  EXPECT_EQ(end.x, style.width);
  EXPECT_EQ(end.width, 0);
  EXPECT_EQ(box.FindCaret({999, 999}), text.size());
  EXPECT_EQ(box.FindCharacter({style.width - 1, box.GetHeight()}), TextBox::npos);
}

/// Whatever the bytes are, each has its place in one line, and no line is too wide.
TEST(TextBox, SetsAnyBytes) {
  const char* const parts[] = {
      "a",      "VA",     " ",      "  ",   "\t",       "\n",   "\r",   "-",
      "\u00E9", "\u3042", "\u2028", "\xC3", "\xE3\x81", "\xFF", "\x80", "\xF0\x9F\x98\x80",
      "\u0301"};
  unsigned state = 1;
  const auto random = [&](unsigned n) { return (state = state * 1103515245 + 12345) / 65536 % n; };
  for (int i = 0; i < 3000; ++i) {
    std::string text;
    for (unsigned n = random(30); n > 0; --n)
      text += random(20) ? parts[random(std::size(parts))] : std::string(1, '\0');
    TextStyle style;
    style.width = static_cast<int>(random(90)) - 2;
    style.height = random(2) ? static_cast<int>(random(100)) : kUnlimited;
    style.align = TextAlign(random(5));
    style.ellipsis = random(2) ? "\u2026" : "";
    TextBox box;
    ASSERT_TRUE(box.SetText(Sans(), text, white, style));
    ASSERT_GT(box.GetLineCount(), 0u);
    size_t end = 0;
    for (size_t index = 0; index < box.GetLineCount(); ++index) {
      const TextLine line = box.GetLine(index);
      ASSERT_GE(line.begin, end) << "in turn " << i;
      ASSERT_LE(line.begin - end, 3u) << "what ends a line, at most";
      end = line.end;
      ASSERT_GE(box.FindCaret({line.box.x + line.box.width, line.box.y}), line.begin);
      const bool isOneCharacter =
          line.box.width == box.GetCharacter(line.begin).width || style.width < 30;
      ASSERT_TRUE(line.box.width <= style.width || isOneCharacter) << "in turn " << i;
      for (size_t at = line.begin; at < line.end; ++at)
        ASSERT_EQ(box.GetCharacter(at).y, line.box.y);
    }
    ASSERT_TRUE(box.IsCut() || text.find_first_not_of(" \t\r\n\u2028", end) == std::string::npos);
    ASSERT_EQ(box.GetCharacter(text.size()).width, 0);
  }
}

TEST(TextBox, GivesNoRoomToBytesThatAreNoCharacters) {
  TextBox box;
  for (const std::string text : {"A\xE2\x82", "A\xC3V",
                                 "\x80"
                                 "A\xFF",
                                 "A\xF0\x9F\x98"}) {
    ASSERT_TRUE(box.SetText(Sans(), text, white));
    EXPECT_EQ(box.GetWidth(), text.back() == 'V' ? WidthOf("AV") : WidthOf("A"));
  }
}

TEST(TextBox, TakesAMillionCharactersInAnyWidth) {
  std::string words, word(1'000'000, 'x');
  while (words.size() < word.size()) words += "many words ";
  TextStyle style;
  const std::pair<const std::string&, int> cases[] = {
      {words, 300}, {words, kUnlimited}, {word, 0}, {word, kUnlimited}};
  for (const auto& [text, width] : cases) {
    style.width = width;
    TextBox box;
    ASSERT_TRUE(box.SetText(Sans(), text, white, style));
    EXPECT_EQ(box.GetLine(box.GetLineCount() - 1).end, text.size());
  }
}

TEST(TextBox, LivesWithLittleMemoryAndDrawsWithoutAny) {
  TextStyle style;
  style.width = 60;
  const std::string text = "some words on some lines, ended";
  Stage stage;
  WidthOf(text);  // The font knows all of its characters then.
  bool isSet = false;
  for (int granted = 0; !isSet; ++granted) {
    TextBox box;
    const std::string log = helpers::LoggedAt(3, [&] {
      const support::ScarceMemory scarce(granted);
      isSet = box.SetText(Sans(), text, white, style);
    });
    EXPECT_EQ(box.GetLineCount() > 0, isSet);
    EXPECT_EQ(log, isSet ? "" : "<ZIRK.error>: no memory for a text box\n");
    box.Draw(*stage.drawn, {0, 0});
    const int before = support::Allocations();
    box.Draw(*stage.drawn, {0, 0});
    static_cast<void>(box.GetCharacter(box.FindCaret({20, 20})));
    EXPECT_EQ(support::Allocations(), before);
  }
}

}  // namespace
}  // namespace ZIRK::kit

#include "phone/at/line_reader.h"

#include <vector>

#include <gtest/gtest.h>

namespace {

using phone::at::LineReader;
using Lines = std::vector<std::string>;

Lines linesOf(LineReader& reader) {
  Lines lines;
  while (auto line = reader.next()) lines.push_back(std::move(*line));
  return lines;
}

Lines linesIn(std::string_view octets) {
  LineReader reader;
  reader.take(octets);
  return linesOf(reader);
}

TEST(LineReader, AnyLineEnd_EndsOneLineAndEmptyOnesVanish) {
  const Lines both{"+CSQ: 12,99", "OK"};
  EXPECT_EQ(linesIn("\r\n+CSQ: 12,99\r\n\r\nOK\r\n"), both);
  EXPECT_EQ(linesIn("+CSQ: 12,99\nOK\n"), both);
  EXPECT_EQ(linesIn("+CSQ: 12,99\rOK\r"), both);
  EXPECT_EQ(linesIn("\r\r\n+CSQ: 12,99\n\r\n\rOK\r\r\n"), both);
}

TEST(LineReader, OctetByOctet_GivesTheSameLines) {
  const std::string octets = "AT\r\r\n+CMGL: 1,1,,2\r\n0011\r\n\r\nOK\r\n";
  LineReader reader;
  Lines lines;
  for (const char c : octets) {
    reader.take(std::string_view(&c, 1));
    for (auto& line : linesOf(reader)) lines.push_back(line);
  }
  EXPECT_EQ(lines, linesIn(octets));
  EXPECT_EQ(lines, (Lines{"AT", "+CMGL: 1,1,,2", "0011", "OK"}));
}

TEST(LineReader, LineWithoutEnd_WaitsForIt) {
  LineReader reader;
  reader.take("\r\nO");
  EXPECT_EQ(linesOf(reader), Lines());
  reader.take("K\r");
  EXPECT_EQ(linesOf(reader), Lines{"OK"});
}

TEST(LineReader, DroppedPartialLine_LeavesTheNextAlone) {
  LineReader reader;
  reader.take("+CMGL: 3,1,,2");
  reader.dropPartial();
  reader.take("\r\nOK\r\n");
  EXPECT_EQ(linesOf(reader), Lines{"OK"});
}

TEST(LineReader, ControlCharactersAndOuterSpaces_AreNoPartOfALine) {
  EXPECT_EQ(linesIn(std::string_view("\0 0011AB\x1A\r\n\x1BOK  \r\n", 18)), (Lines{"0011AB", "OK"}));
}

TEST(LineReader, PromptWithAndWithoutSpace_IsSeenWithoutALineEnd) {
  for (const std::string_view prompt : {"\r\n> ", "\r\n>", ">", " > "}) {
    LineReader reader;
    reader.take(prompt);
    EXPECT_TRUE(reader.endsWithPrompt()) << prompt;
    EXPECT_EQ(linesOf(reader), Lines());
  }
}

TEST(LineReader, PromptBehindALine_IsSeenOnceTheLineWasTaken) {
  LineReader reader;
  reader.take("AT+CMGS=20\r\r\n> ");
  EXPECT_FALSE(reader.endsWithPrompt());
  EXPECT_EQ(linesOf(reader), Lines{"AT+CMGS=20"});
  EXPECT_TRUE(reader.endsWithPrompt());
  reader.dropPrompt();
  EXPECT_FALSE(reader.endsWithPrompt());
}

TEST(LineReader, PromptWithALineEnd_IsALine) { EXPECT_EQ(linesIn("\r\n>\r\n"), Lines{">"}); }

TEST(LineReader, SomethingElseThatBegins_IsNoPromptAndStays) {
  LineReader reader;
  reader.take("\r\n+CM");
  EXPECT_FALSE(reader.endsWithPrompt());
  reader.dropPrompt();
  reader.take("TI: \"SM\",1\r\n");
  EXPECT_EQ(linesOf(reader), Lines{"+CMTI: \"SM\",1"});
}

TEST(LineReader, LineThatNeverEnds_IsDroppedWholeAndTakesNoRoom) {
  LineReader reader;
  const std::string longest(LineReader::longestLine, 'x');
  reader.take(longest + "\r\n");
  EXPECT_EQ(linesOf(reader), Lines{longest});
  reader.take(longest + "y\r\nOK\r\n");
  EXPECT_EQ(linesOf(reader), Lines{"OK"});
}

}  // namespace

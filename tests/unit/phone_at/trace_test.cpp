#include "phone/at/trace.h"

#include <vector>

#include <gtest/gtest.h>

namespace {

using phone::at::Content;
using phone::at::masked;
using phone::at::Trace;

TEST(AtTrace, NumbersAndNames_AreMaskedInCommandsAndAnswers) {
  EXPECT_EQ(masked("AT+CSCA=\"+46705008999\",145", Content::Syntax), "AT+CSCA=\"***\",145");
  EXPECT_EQ(masked("+CLIP: +46701234567,145", Content::Syntax), "+CLIP: +***,145");
  EXPECT_EQ(masked("+CMGL: 1,1,\"Anna\",24", Content::Syntax), "+CMGL: 1,1,\"***\",24");
  EXPECT_EQ(masked("240016700123456", Content::Syntax), "***");
  EXPECT_EQ(masked("+CUSD: 0,\"Your balance", Content::Syntax), "+CUSD: 0,\"***");
  EXPECT_EQ(masked("+CSCA: 002B003400360037", Content::Syntax), "+CSCA: ***");
}

TEST(AtTrace, WhatTellsNothing_IsShown) {
  for (const char* line : {"AT+CPMS=\"SM\",\"ME\",\"SM\"", "+CPMS: 12,20,12,20,12,20", "+CMTI: \"SM\",5", "AT+CMGS=153",
                           "+CMS ERROR: 321", "AT+CSCS=\"GSM\"", "SIMCOM_SIM800L", "+CGREG: 1", "AT+CNMI=2,1,0,0,0"})
    EXPECT_EQ(masked(line, Content::Syntax), line);
}

TEST(AtTrace, MessagesAndUnknownLines_ShowTheirLengthOnly) {
  EXPECT_EQ(masked("0011000B91", Content::Pdu), "<5 octets>");
  EXPECT_EQ(masked("Meet me at 5", Content::Unknown), "<12 characters>");
}

TEST(AtTrace, Sink_GetsMaskedLinesUnlessEverythingWasAskedFor) {
  std::vector<std::string> lines;
  const auto sink = [&](std::string_view line) { lines.emplace_back(line); };
  Trace(sink).sent("0011", Content::Pdu);
  Trace(sink).received("Meet", Content::Unknown);
  Trace(sink).note("no answer");
  Trace(sink).noteAbout("service centre: \"+4670\"");
  Trace(sink, true).noteAbout("service centre: \"+4670\"");
  Trace(sink, true).sent("0011", Content::Pdu);
  Trace(sink, true).received("+CLIP: \"+4670\"", Content::Syntax);
  EXPECT_EQ(lines,
            (std::vector<std::string>{"> <2 octets>", "< <4 characters>", "- no answer", "- service centre: \"***\"",
                                      "- service centre: \"+4670\"", "> 0011", "< +CLIP: \"+4670\""}));
}

}  // namespace

#include "phone/at/result.h"

#include <gtest/gtest.h>

namespace {

using phone::at::isBusy;
using phone::at::parseResult;
using phone::at::Result;
using phone::at::unknownWords;
using Kind = Result::Kind;

void expectResult(const std::string& line, Kind kind, int code = 0) {
  const auto result = parseResult(line);
  ASSERT_TRUE(result) << line;
  EXPECT_EQ(*result, (Result{kind, code, line}));
}

TEST(AtResult, PlainResults_InAnyCase) {
  expectResult("OK", Kind::Ok);
  expectResult("ok", Kind::Ok);
  expectResult("ERROR", Kind::Error);
  expectResult("COMMAND NOT SUPPORT", Kind::Error);
}

TEST(AtResult, NumberedErrors_HoweverTheyAreSpaced) {
  expectResult("+CMS ERROR: 321", Kind::CmsError, 321);
  expectResult("+CMS ERROR:321", Kind::CmsError, 321);
  expectResult("+CMS ERROR : 321", Kind::CmsError, 321);
  expectResult("+CMSERROR:  321", Kind::CmsError, 321);
  expectResult("CMS ERROR: 321", Kind::CmsError, 321);
  expectResult("+CME ERROR: 0", Kind::CmeError, 0);
  expectResult("+cme error: 14", Kind::CmeError, 14);
}

TEST(AtResult, ErrorsInWords_HaveTheirNumbers) {
  expectResult("+CMS ERROR: invalid memory index", Kind::CmsError, 321);
  expectResult("+CMS ERROR: Invalid PDU mode parameter", Kind::CmsError, 304);
  expectResult("+CMS ERROR: (U)SIM not inserted", Kind::CmsError, 310);
  expectResult("+CMS ERROR: PH-(U)SIM PIN required", Kind::CmsError, 312);
  expectResult("+CMS ERROR: SMSC address unknown", Kind::CmsError, 330);
  expectResult("+CMS ERROR: memory full", Kind::CmsError, 322);
  expectResult("+CME ERROR: SIM busy", Kind::CmeError, 14);
  expectResult("+CME ERROR: memory full", Kind::CmeError, 20);
  expectResult("+CME ERROR: SIM PIN required", Kind::CmeError, 11);
  expectResult("+CME ERROR: phone failure", Kind::CmeError, 0);
}

// 3GPP TS 24.011, table 8.4.
TEST(AtResult, WordsOfTheNetwork_HaveTheirNumbers) {
  const std::pair<const char*, int> causes[] = {
      {"Unassigned (unallocated) number", 1},
      {"Operator determined barring", 8},
      {"Call barred", 10},
      {"Short message transfer rejected", 21},
      {"Destination out of order", 27},
      {"Unidentified Subscriber", 28},
      {"Facility rejected", 29},
      {"Unknown Subscriber", 30},
      {"Network out of order", 38},
      {"Temporary failure", 41},
      {"Congestion", 42},
      {"Resources unavailable, unspecified", 47},
      {"Requested facility not subscribed", 50},
      {"Requested facility not implemented", 69},
      {"Invalid short message transfer reference value", 81},
      {"Invalid message, unspecified", 95},
      {"Semantically incorrect message", 95},
      {"Invalid mandatory information", 96},
      {"Message type non-existent or not implemented", 97},
      {"Message not compatible with short message protocol state", 98},
      {"Information element non-existent or not implemented", 99},
      {"Protocol error, unspecified", 111},
      {"Interworking, unspecified", 127},
  };
  for (const auto& [words, code] : causes) expectResult(std::string("+CMS ERROR: ") + words, Kind::CmsError, code);
}

TEST(AtResult, WordsThatNobodyKnows_AreAnErrorAllTheSame) {
  expectResult("+CME ERROR: the cat is on the keyboard", Kind::CmeError, unknownWords);
  expectResult("+CMS ERROR:", Kind::CmsError, unknownWords);
  expectResult("+CMS ERROR: -3", Kind::CmsError, unknownWords);
  expectResult("+CMS ERROR: 99999999999", Kind::CmsError, unknownWords);
}

TEST(AtResult, AnythingElse_IsNone) {
  for (const char* line : {"", "O", "OKAY", "+CMS: 1", "+CMTI: \"SM\",1", "NO CARRIER", "BUSY", "RING", "0", "ERRORS"})
    EXPECT_FALSE(parseResult(line)) << line;
}

TEST(AtResult, BusyErrors_AreThoseThatPass) {
  for (const int code : {301, 314, 512, 515}) EXPECT_TRUE(isBusy({Kind::CmsError, code, {}})) << code;
  for (const int code : {14, 30, 304, 310, 320, 321, 330, 500})
    EXPECT_FALSE(isBusy({Kind::CmsError, code, {}})) << code;
  EXPECT_TRUE(isBusy({Kind::CmeError, 14, {}}));
  EXPECT_FALSE(isBusy({Kind::CmeError, 10, {}}));
  EXPECT_FALSE(isBusy({Kind::Error, 0, {}}));
  EXPECT_FALSE(isBusy({Kind::Ok, 0, {}}));
}

}  // namespace

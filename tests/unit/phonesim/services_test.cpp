// What is asked of calls, services and locks by programs that want messages.
#include "unit/phonesim/fixture.h"

namespace phonesim {
namespace {

using ServicesTest = DialogueTest;

TEST_F(ServicesTest, Announcements_CanBeAskedFor) {
  EXPECT_EQ(ask("AT+CLIP?;+COLP?;+CRC?;+CSSN?;+CUSD?"), "+CLIP: 0,1|+COLP: 0,1|+CRC: 0|+CSSN: 0,0|+CUSD: 0|OK|");
  EXPECT_EQ(ask("AT+CLIP=1;+COLP=1;+CRC=1;+CSSN=0,1;+CUSD=1"), "OK|");
  EXPECT_EQ(ask("AT+CLIP?;+COLP?;+CRC?;+CSSN?;+CUSD?"), "+CLIP: 1,1|+COLP: 1,1|+CRC: 1|+CSSN: 0,1|+CUSD: 1|OK|");
  for (const char* const wrong : {"AT+CLIP=2", "AT+CLIP=1,1", "AT+CRC=x", "AT+CSSN=2", "AT+CSSN", "AT+CUSD=3"})
    EXPECT_EQ(ask(wrong), "+CME ERROR: 50|") << wrong;
  EXPECT_EQ(ask("AT+CUSD=2;+CUSD?"), "+CUSD: 1|OK|");
  EXPECT_EQ(ask("AT+CLIP=?;+CUSD=?"), "+CLIP: (0,1)|+CUSD: (0-2)|OK|");
  EXPECT_EQ(ask("AT+CLIP"), "+CME ERROR: 4|");
}

TEST_F(ServicesTest, WhatNeedsANetworkWithCalls_IsRefused) {
  EXPECT_EQ(ask("AT+CUSD=1,\"*100#\",15"), "+CME ERROR: 4|");
  EXPECT_EQ(ask("AT+CCFC=0,2"), "+CCFC: 0,7|OK|");
  EXPECT_EQ(ask("AT+CCFC=0,3,\"+46701\""), "+CME ERROR: 3|");
  EXPECT_EQ(ask("AT+CCFC=9,2"), "+CME ERROR: 50|");
  EXPECT_EQ(ask("AT+CCWA=1,2"), "+CCWA: 0,7|OK|");
  EXPECT_EQ(ask("AT+CCWA=1,1"), "+CME ERROR: 3|");
  EXPECT_EQ(ask("AT+CCWA?;+CCWA=0;+CCWA?"), "+CCWA: 1|+CCWA: 0|OK|");
  EXPECT_EQ(ask("AT+CCWA=1,2,1;+CCWA?"), "+CCWA: 0,7|+CCWA: 1|OK|");
  for (const char* const wrong : {"AT+CCWA=2", "AT+CCWA=2,2", "AT+CCWA=1,3", "AT+CCWA=1,2,1,1", "AT+CCWA=x,2"})
    EXPECT_EQ(ask(wrong), "+CME ERROR: 50|") << wrong;
  EXPECT_EQ(ask("AT+CCWA"), "+CME ERROR: 4|");
  EXPECT_EQ(ask("AT+CLIR?;+CLIR=0"), "+CLIR: 0,0|OK|");
  EXPECT_EQ(ask("AT+CLIR=1"), "+CME ERROR: 4|");
  EXPECT_EQ(ask("AT+CLCC"), "OK|");
}

TEST_F(ServicesTest, Lock_IsTheSimsAlone) {
  EXPECT_EQ(ask("AT+CLCK=?;+CPWD=?"), "+CLCK: (\"SC\",\"AO\",\"OI\",\"OX\",\"AI\",\"IR\")|+CPWD: (\"SC\",8)|OK|");
  EXPECT_EQ(ask("AT+CLCK=\"SC\",2;+CLCK=\"AO\",2"), "+CLCK: 0|+CLCK: 0|OK|");
  EXPECT_EQ(ask("AT+CLCK=\"AO\",1,\"0000\""), "+CME ERROR: 3|");
  EXPECT_EQ(ask("AT+CLCK=\"XX\",2"), "+CME ERROR: 4|");
  EXPECT_EQ(ask("AT+CLCK=\"SC\",1"), "+CME ERROR: 50|");
  EXPECT_EQ(ask("AT+CLCK=\"SC\",3,\"0000\""), "+CME ERROR: 50|");
  EXPECT_EQ(ask("AT+CPWD=\"SC\",\"0000\",\"1111\""), "+CME ERROR: 3|");  // nothing is locked
  EXPECT_EQ(ask("AT+CLCK=\"SC\",1,\"0000\";+CLCK=\"SC\",2"), "+CLCK: 1|OK|");
  EXPECT_EQ(ask("AT+CPWD=\"SC\",\"0000\",\"1111\""), "OK|");
  EXPECT_EQ(ask("AT+CPWD=\"SC\",\"1111\",\"123\""), "+CME ERROR: 50|");
  EXPECT_EQ(ask("AT+CPWD=\"AO\",\"1111\",\"1234\""), "+CME ERROR: 4|");
  EXPECT_EQ(ask("AT+CLCK=\"SC\",0,\"0000\""), "+CME ERROR: 16|");
  EXPECT_EQ(ask("AT+CLCK=\"SC\",0,\"1111\";+CLCK=\"SC\",2"), "+CLCK: 0|OK|");
}

TEST_F(ServicesTest, Lock_WithThreeWrongPinsWantsThePuk) {
  for (int i = 0; i < 3; ++i) EXPECT_EQ(ask("AT+CLCK=\"SC\",1,\"9999\""), "+CME ERROR: 16|");
  EXPECT_EQ(ask("AT+CPIN?"), "+CPIN: SIM PUK|OK|");
  EXPECT_EQ(ask("AT+CLCK=\"SC\",2"), "+CME ERROR: 12|");
}

}  // namespace
}  // namespace phonesim

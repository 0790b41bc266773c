// Settings of a wrong type, size or content, as other programs, other versions and users with a registry editor leave
// them.

#include <array>
#include <cstring>

#include "com/windows.h"
#include "product_test.h"
#include "support/text.h"

namespace failures_tests {
namespace {

using testing_support::removeOption;
using testing_support::setOption;
using Bytes = std::vector<std::byte>;

constexpr std::size_t sixtyFourKilo = 65536;

// Every setting that start-up, sending and receiving read, but for WizardDone.
constexpr std::array<const wchar_t*, 9> settings{L"SCAddress",
                                                 L"SCAddress_UseOwn",
                                                 L"SCAddress_Own",
                                                 L"SendReceive_UseAuto",
                                                 L"SendReceive_AutoIntervall",
                                                 L"SendReceive_AutoRemove",
                                                 L"Sim_Full_Warning",
                                                 L"My_FullName",
                                                 L"My_PhoneNo"};

Bytes bytes(std::initializer_list<unsigned char> values) {
  Bytes data;
  for (const unsigned char value : values) data.push_back(std::byte{value});
  return data;
}

enum class End : std::uint8_t { WithNul, WithoutNul };
Bytes textBytes(const std::wstring& text, End end = End::WithNul) {
  const auto* const data = reinterpret_cast<const std::byte*>(text.c_str());
  return {data, data + (text.size() + (end == End::WithNul ? 1 : 0)) * sizeof(wchar_t)};
}

struct Shape {
  const char* what;
  DWORD type;
  Bytes data;
};

std::vector<Shape> unusableShapes() {
  return {
      {"four binary bytes", REG_BINARY, bytes({1, 0, 0, 0})},
      {"no type and no data", REG_NONE, {}},
      {"a text with variables in it", REG_EXPAND_SZ, textBytes(L"%TEMP%")},
      {"several texts", REG_MULTI_SZ, textBytes(std::wstring(L"1\0", 2))},
      {"a number of eight bytes", REG_QWORD, bytes({1, 0, 0, 0, 0, 0, 0, 0})},
      {"a number with its bytes the other way round", REG_DWORD_BIG_ENDIAN, bytes({0, 0, 0, 1})},
      {"a number that is too long", REG_DWORD, bytes({1, 0, 0, 0, 9, 9, 9, 9})},
      {"an empty text", REG_SZ, textBytes(L"")},
      {"a text without even a NUL", REG_SZ, {}},
  };
}

class Settings : public ProductTest {
 protected:
  void SetUp() override {
    startHandset();
    startClient();
    disconnectAddIn();
  }
  // The trace of a start with the present settings.
  Lines connectTrace() {
    const std::size_t from = mark();
    connectAddIn();
    return traced(from);
  }
  Lines clickTrace() {
    const std::size_t from = mark();
    clickSendReceive();
    return traced(from);
  }
  // Sends the one message and gives the trace up to the phone's answer.
  Lines sendTrace(const std::string& text) {
    const std::size_t sent = ask("list \"Sent Items\"").lines.size();
    const std::size_t from = mark();
    compose(addressOfBo, text);
    EXPECT_TRUE(waitForItems("Sent Items", sent + 1));
    // Moving is not the last of it.
    EXPECT_TRUE(testing_support::waitUntil([&] { return traced(from).back() == "SetupSendMessage: #"; }, patience));
    return traced(from);
  }
  // The only message on the phone.
  void deliver(const std::string& text, const std::u16string& time) {
    handset_.Clear(sim);
    handset_.Deliver(u"+46701112233", std::u16string(text.begin(), text.end()), time);
  }
  std::string field(const std::string& folder, const std::string& name, std::size_t position = 0) {
    return MailClientProcess::field(itemOf(folder, position), name);
  }
};

// Between the guard's lines and the transaction's.
const std::string noServiceCentre = "Error:13, Type mismatch, mrktxtmsg";
const Lines failedTimer{"Error:-1, Failed to setup timer, StartUpCompleted",
                        "Error:-1, Failed in baseclass.StartUpCompleted, IDTExtensibility2_OnConnection"};

// One new message on the SIM alone, listed with everything else.
Lines receivedOne(const Lines& before, const Lines& after) {
  return Lines{"Inside Function ReceiveAll", "Create m_smsToDelete collection",
               "Inside ReceiveAll Function - m_bReceiveAll = True"} +
         listingBegins() + nothingListed() + storeListed("ME", true) + listingBegins() + messageBegins() + before +
         after + storeListed("SIM", true) + Lines{"ListMessage function called"};
}
const Lines nothingToDelete{"Go through collection and delete SMSs from the SIM card",
                            "The number of the SMSs in collection = 0", "Clear the m_smsToDelete collection"};
const std::string checksTheSetting = "Check in the registry if a warning should be displayed, if the SIM card is full";

TEST_F(Settings, OfNoUsableTypeOrSize_ReadAsMissing) {
  setOption(L"SendReceive_UseAuto", 1);
  std::size_t round = 0;
  for (const Shape& shape : unusableShapes()) {
    SCOPED_TRACE(shape.what);
    for (const wchar_t* const name : settings) setOption(name, shape.type, shape.data);
    EXPECT_EQ(connectTrace(), startLines(Start::ByTheUser));
    const std::u16string time{u'2', u'6', u'1', u'1', u'2', u'0',
                              u'0', u'8', u'0', u'0', u'0', static_cast<char16_t>(u'0' + round)};
    const std::string text = "Message " + std::to_string(round);
    deliver(text, time);
    EXPECT_EQ(clickTrace(), (receivedOne(Lines{"Delete from SIM when displayed in Inbox:0"} + messageChecked(round, 0) +
                                             Lines{"CreateMessage:#"},
                                         messageMoved()) +
                             nothingToDelete + sendTimerArmed() +
                             Lines{checksTheSetting, "Show warning - SIM card is full"} + simChecked(1, 20)));
    EXPECT_EQ(field("Inbox", "to", round), "");
    EXPECT_EQ(field("Inbox", "topic", round), "\\u0001" + testing_support::utf8(time));
    const Lines handedOver = messageHandedOver("+46707778899", "Answer");
    EXPECT_EQ(sendTrace("Answer"),
              Lines{"m_objOutboxItems_ItemAdd, trigger a sendall"} + sendTimerArmed() + handedOver + messageSent());
    EXPECT_EQ(handset_.SentServiceCentre(static_cast<std::int32_t>(round)), u"") << "the fall-back";
    disconnectAddIn();
    ++round;
  }
  EXPECT_EQ(items().size(), 2 * round);
  EXPECT_EQ(handset_.SentCount(), static_cast<std::int32_t>(round));
}

// What can be read is read, whatever its length. "False" written without a NUL is False, and so on.
TEST_F(Settings, OfOddLengthOrOtherType_ReadAsWhatTheySay) {
  setOption(L"WizardDone", REG_DWORD, bytes({1}));
  setOption(L"SendReceive_UseAuto", REG_SZ, textBytes(L"False", End::WithoutNul));
  setOption(L"SendReceive_AutoIntervall", REG_DWORD, bytes({0xFF, 0xFF, 0xFF, 0xFF}));
  setOption(L"SendReceive_AutoRemove", REG_DWORD, bytes({1, 0}));
  setOption(L"Sim_Full_Warning", REG_DWORD, {});
  setOption(L"My_FullName", REG_DWORD, bytes({42, 0, 0, 0}));
  setOption(L"My_PhoneNo", REG_SZ, textBytes(L"+46700000001", End::WithoutNul));
  setOption(L"SCAddress", REG_SZ, textBytes(L"Somebody (+46701)", End::WithoutNul));
  setOption(L"SCAddress_UseOwn", REG_SZ, textBytes(L" 1 "));
  Bytes oddSize = textBytes(L"(+46 702)", End::WithoutNul);
  oddSize.push_back(std::byte{'x'});
  setOption(L"SCAddress_Own", REG_SZ, oddSize);

  EXPECT_EQ(connectTrace(), startLines(Start::ByTheUser));
  deliver("Once", u"261120080000");
  const Lines removed{"User wants to remove message from the SIM card when readed in outlook",
                      "instaed to delete the SMS, put it in the m_smsToDeleteCollection"};
  EXPECT_EQ(
      clickTrace(),
      (receivedOne(Lines{"Delete from SIM when displayed in Inbox:1"} + messageChecked(0, 0) +
                       Lines{"CreateMessage:#"} + removed,
                   messageMoved()) +
       Lines{"Go through collection and delete SMSs from the SIM card", "The number of the SMSs in collection = 1",
             "Delete SMS - IsStorageSupported = True", "Inside Function DeleteSMSFromPhone",
             "DeleteSMSFromPhone - IsStorageSupported = True", "Delete SMS in phone: transaction id: #",
             "m_objSMS_OnNotifyResponse - TransID:#, Status:0, State:3", "disablar guard timer",
             "STATE_DELETE - Response from delete SMS: # status: 0", "DeleteSMSFromPhone = True",
             "Delete from SIM - index = 1", "Delete from SIM - storage = 2", "Clear the m_smsToDelete collection"} +
       sendTimerArmed() + Lines{checksTheSetting, "Don't show warning - SIM card is full: 0"}));
  EXPECT_EQ(handset_.StoredCount(sim), 0);
  EXPECT_EQ(field("Inbox", "to"), "42 [+46700000001]");
  sendTrace("Answer");
  EXPECT_EQ(handset_.SentServiceCentre(0), u"+46702");
  EXPECT_EQ(items(), (Lines{"Inbox: Once", "Sent Items: Answer"}));
}

// ---- texts where numbers belong -------------------------------------------------------------------------------------

TEST_F(Settings, PollingThatIsNoNumber_StopsTheStartAtTheTimer) {
  struct Case {
    const wchar_t* name;
    std::wstring text;
    std::string error;
  };
  const std::string mismatch = "Error:13, Type mismatch, mrktxtmsg";
  const std::string overflow = "Error:6, Overflow, mrktxtmsg";
  const std::wstring manyDigits(sixtyFourKilo, L'9');
  for (const Case& c : {Case{L"SendReceive_UseAuto", L"perhaps", mismatch},
                        {L"SendReceive_UseAuto", manyDigits, overflow},
                        {L"SendReceive_AutoIntervall", L"2 minutes", mismatch},
                        {L"SendReceive_AutoIntervall", L"2147483648", overflow},
                        {L"SendReceive_AutoIntervall", manyDigits, overflow}}) {
    SCOPED_TRACE(c.error);
    setOption(L"SendReceive_UseAuto", 1);
    removeOption(L"SendReceive_AutoIntervall");
    setOption(c.name, c.text.c_str());
    EXPECT_EQ(connectTrace(),
              connectingLines(Start::ByTheUser) + engineLines() + noLocalizer + Lines{c.error} + failedTimer);
    EXPECT_TRUE(isSendReceiveEnabled()) << "what came before the timer keeps working";
    disconnectAddIn();
  }
  connectAddIn();
  deliver("Comes all the same", u"261120080000");
  clickSendReceive();
  EXPECT_EQ(items(), Lines{"Inbox: Comes all the same"});
}

TEST_F(Settings, AutoRemoveThatIsNoNumber_LeavesTheMessageOnThePhone) {
  for (const auto& [text, error] : {std::pair{std::wstring(L"12abc"), "Error:13, Type mismatch, mrktxtmsg"},
                                    {std::wstring(sixtyFourKilo, L'1'), "Error:6, Overflow, mrktxtmsg"}}) {
    setOption(L"SendReceive_AutoRemove", text.c_str());
    connectAddIn();
    deliver("Not lost", u"261120080000");
    EXPECT_EQ(clickTrace(), (receivedOne(Lines{error}, Lines{"CreateMessage called - message will be created in outbox",
                                                             "Return from CreateMessage call - strEntryId = ",
                                                             "Check if message lengt is larger than 0"}) +
                             nothingToDelete + sendTimerArmed() +
                             Lines{checksTheSetting, "Show warning - SIM card is full"} + simChecked(1, 20)));
    EXPECT_EQ(items(), Lines{});
    EXPECT_EQ(handset_.StoredCount(sim), 1);
    disconnectAddIn();
  }
  removeOption(L"SendReceive_AutoRemove");
  connectAddIn();
  clickSendReceive();
  EXPECT_EQ(items(), Lines{"Inbox: Not lost"});
}

TEST_F(Settings, NumbersOfTheCommandThatAreNone_EndWhatAsksForThem) {
  connectAddIn();
  setOption(L"Sim_Full_Warning", L"often");
  EXPECT_EQ(clickTrace(),
            (receivedNothing(true) + sendTimerArmed() + Lines{checksTheSetting, "Error:13, Type mismatch, mrktxtmsg"}));
  removeOption(L"Sim_Full_Warning");

  setOption(L"SCAddress", L"Somebody (+46701)");
  setOption(L"SCAddress_UseOwn", L"own");
  Lines handedOver = messageHandedOver("+46707778899", "Answer");
  handedOver.insert(handedOver.end() - 5, noServiceCentre);
  EXPECT_EQ(sendTrace("Answer"),
            Lines{"m_objOutboxItems_ItemAdd, trigger a sendall"} + sendTimerArmed() + handedOver + messageSent());
  EXPECT_EQ(handset_.SentServiceCentre(0), u"") << "the fall-back";

  setOption(L"WizardDone", L"12abc");
  const Lines lines = clickTrace();
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(lines[0], "Error:13, Type mismatch, mrktxtmsg");
  for (const std::string& line : lines) EXPECT_NE(line, "Inside Function ReceiveAll");
  EXPECT_EQ(items(), Lines{"Sent Items: Answer"});
}

// ---- long texts -----------------------------------------------------------------------------------------------------

TEST_F(Settings, TextsOf64Kilobytes_AreTakenAsTheyAre) {
  const std::wstring filling(sixtyFourKilo, L'n');
  setOption(L"My_FullName", filling.c_str());
  setOption(L"My_PhoneNo", (filling + L"1").c_str());
  setOption(L"SCAddress", (filling + L"(+46 701)" + filling).c_str());
  connectAddIn();
  deliver("To somebody with a long name", u"261120080000");
  clickSendReceive();
  const std::string narrow(sixtyFourKilo, 'n');
  EXPECT_TRUE(field("Inbox", "to") == narrow + " [" + narrow + "1]") << field("Inbox", "to").size();
  EXPECT_TRUE(field("Inbox", "topic") == narrow + " [" + narrow + "1]\\u0001261120080000");
  sendTrace("Answer");
  EXPECT_EQ(handset_.SentServiceCentre(0), u"+46701");
  EXPECT_EQ(items(), (Lines{"Inbox: To somebody with a long name", "Sent Items: Answer"}));
  disconnectAddIn();
  connectAddIn();
  clickSendReceive();
  EXPECT_EQ(items(), (Lines{"Inbox: To somebody with a long name", "Sent Items: Answer"})) << "recognised as it was";
}

// ---- the trace's own ------------------------------------------------------------------------------------------------

// A mail client without a window logs three lines at its start, which is all that these need.
class TraceSettings : public ProductTest {
 protected:
  TraceSettings() { trace_->endViewer(); }
  static void setText(TraceLog::Where where, const wchar_t* name, const std::wstring& text) {
    TraceLog::set(where, name, REG_SZ, textBytes(text));
  }
  // Where the add-in does not come as far as starting the viewer, it has to be there.
  Lines startWithViewer() {
    EXPECT_TRUE(trace_->startViewer());
    startClient(L"--no-explorer");
    return traced(0);
  }
  static constexpr auto channel = TraceLog::Where::Channel;
  static constexpr auto writer = TraceLog::Where::Writer;
  const Lines lines{"<==== MRKTXTMSG Version 1.0.0", "Connectmode:1", "ActiveWindow is nothing", "OnStartupComplete"};
  const Lines linesWithoutName{"? (2) :<==== MRKTXTMSG Version 1.0.0", "? (2) :Connectmode:1",
                               "? (2) :ActiveWindow is nothing", "? (2) :OnStartupComplete"};
};

TEST_F(TraceSettings, EnabledThatIsNoNumber_EndsTheInitialisation) {
  setText(channel, L"Enabled", L"yes");
  EXPECT_EQ(startWithViewer(), linesWithoutName);
}

TEST_F(TraceSettings, EnabledOfNoUsableType_CountsAsOff) {
  TraceLog::set(channel, L"Enabled", REG_BINARY, bytes({1, 0, 0, 0}));
  EXPECT_EQ(startWithViewer(), linesWithoutName);
}

TEST_F(TraceSettings, LevelBeyondSixteenBits_EndsTheInitialisation) {
  TraceLog::set(writer, L"Level", REG_DWORD, bytes({0x70, 0x11, 0x01, 0x00}));
  EXPECT_EQ(startWithViewer(), linesWithoutName);
}

TEST_F(TraceSettings, PathOf64Kilobytes_IsNoViewer) {
  setText(channel, L"Path", std::wstring(sixtyFourKilo, L'v'));
  EXPECT_EQ(startWithViewer(), linesWithoutName);
}

TEST_F(TraceSettings, NumbersAsTextsAndVisibleOfNoUsableType_AreRead) {
  TraceLog::set(channel, L"Enabled", REG_SZ, textBytes(L"1", End::WithoutNul));
  TraceLog::set(channel, L"Visible", REG_BINARY, bytes({1, 0, 0, 0}));
  setText(writer, L"Level", L"2");
  startClient(L"--no-explorer");
  EXPECT_EQ(traced(0), Lines{"mrktxtmsg (255) : *********** ProcessName: mrktxtmsg - Level: 2 - Time: #"} + lines);
}

}  // namespace
}  // namespace failures_tests

// What the servers write about themselves, for everybody and for the present user alone.
//
// Wine 8 does not look for classes under HKEY_CURRENT_USER, so that road is shown by what is written.

#include <algorithm>

#include "addin/platform/dvmworkerlib.h"
#include "addin/platform/sms_objectlib.h"
#include "addin/platform/timermm.h"
#include "addin/platform/txtmsghelper.h"
#include "registered_servers.h"
#include "servers/dvmworker/handset_control.h"
#include "support/text.h"
#include "support/win32/registry_listing.h"

namespace servers_tests {
namespace {

using platform::String;
using platform::StringView;
using testing_support::listed;
using testing_support::utf8;
using Lines = std::vector<std::string>;

struct Server {
  StringView file;
  platform::Guid clsid;
  StringView progId;
};

const Server dllServers[] = {
    {u"timermm.dll", platform::timermm::clsidTimer, u"timermm.Timer"},
    {u"mrktxtmsghelper.dll", platform::txtmsghelper::clsidTxtMsg, u"Mrktxtmsghelper.TxtMsg"},
    {u"sms_object.dll", platform::sms_objectlib::clsidSMS, u"SMS_OBJECT.SMS"},
};

const Server workerClasses[] = {
    {u"dvmworker.exe", platform::dvmworkerlib::clsidWorker, u"DVMWorker.Worker"},
    {u"dvmworker.exe", servers::dvmworker::clsidHandset, u"DVMWorker.Handset"},
};

std::wstring wideText(const String& text) { return {text.begin(), text.end()}; }

std::wstring userClass(const Server& server) {
  return L"Software\\Classes\\CLSID\\" + wideText(com::guidText(server.clsid));
}

std::wstring userProgId(const Server& server) { return L"Software\\Classes\\" + wideText(String(server.progId)); }

// The lines of a class but for its title, which is checked to be there and to be the ProgID's as well.
void expectForUser(const Server& server, const Lines& serverLines) {
  SCOPED_TRACE(utf8(server.progId));
  Lines ofClass = listed(HKEY_CURRENT_USER, userClass(server));
  Lines ofProgId = listed(HKEY_CURRENT_USER, userProgId(server));
  ASSERT_FALSE(ofClass.empty());
  const std::string title = ofClass.front();
  EXPECT_TRUE(title.starts_with("||Marrick ")) << title;
  Lines expected{title};
  expected.insert(expected.end(), serverLines.begin(), serverLines.end());
  expected.push_back("\\ProgID||" + utf8(server.progId));
  std::sort(expected.begin(), expected.end());
  std::sort(ofClass.begin(), ofClass.end());
  std::sort(ofProgId.begin(), ofProgId.end());
  EXPECT_EQ(ofClass, expected);
  Lines progIdExpected{title, "\\CLSID||" + utf8(com::guidText(server.clsid))};
  std::sort(progIdExpected.begin(), progIdExpected.end());
  EXPECT_EQ(ofProgId, progIdExpected);
}

void expectNothingForUser(const Server& server) {
  EXPECT_EQ(listed(HKEY_CURRENT_USER, userClass(server)), Lines{"none"});
  EXPECT_EQ(listed(HKEY_CURRENT_USER, userProgId(server)), Lines{"none"});
}

TEST(ServerRegistration, DllsForTheUser_WriteTheirClassesUnderTheUsersKeyAndTakeThemOutAgain) {
  for (const Server& server : dllServers) {
    expectNothingForUser(server);
    EXPECT_EQ(installDll(server.file, TRUE, L"user"), S_OK);
    expectForUser(server,
                  {"\\InprocServer32||" + utf8(productFile(server.file)), "\\InprocServer32|ThreadingModel|Apartment"});
    EXPECT_EQ(installDll(server.file, FALSE, L"user"), S_OK);
    expectNothingForUser(server);
  }
}

TEST(ServerRegistration, DllsForTheUser_LeaveTheMachinesClassesAlone) {
  for (const Server& server : dllServers) {
    const std::wstring machine = L"CLSID\\" + wideText(com::guidText(server.clsid));
    const Lines before = listed(HKEY_CLASSES_ROOT, machine);
    EXPECT_GT(before.size(), 1u);
    EXPECT_EQ(installDll(server.file, TRUE, L"user"), S_OK);
    EXPECT_EQ(installDll(server.file, FALSE, L"user"), S_OK);
    EXPECT_EQ(listed(HKEY_CLASSES_ROOT, machine), before);
  }
}

TEST(ServerRegistration, DllsWithAnotherText_RefuseAndWriteNothing) {
  for (const Server& server : dllServers) {
    EXPECT_EQ(installDll(server.file, TRUE, L"everybody"), E_INVALIDARG);
    expectNothingForUser(server);
  }
}

TEST(ServerRegistration, WorkerForTheUser_WritesBothItsClassesUnderTheUsersKeyAndTakesThemOutAgain) {
  const String program = productFile(u"dvmworker.exe");
  EXPECT_EQ(run(program + u" /RegServerPerUser"), 0u);
  for (const Server& server : workerClasses) expectForUser(server, {"\\LocalServer32||\"" + utf8(program) + "\""});
  EXPECT_EQ(run(program + u" /UnregServerPerUser"), 0u);
  for (const Server& server : workerClasses) expectNothingForUser(server);
}

TEST(ServerRegistration, WorkerWithAnUnknownSwitch_SaysSoAndServesNothing) {
  EXPECT_EQ(run(productFile(u"dvmworker.exe") + u" /Register"), 2u);
}

}  // namespace
}  // namespace servers_tests

#include <gtest/gtest.h>

#include "addin/platform/object.h"
#include "com/registration.h"
#include "support/errors.h"
#include "test_window.h"
#include "win32/system.h"

namespace win32_tests {
namespace {

using platform::LateBound;
using testing_support::errorOf;

constexpr platform::StringView dictionary = u"Scripting.Dictionary";  // comes with every Windows

void expectCannotCreate(platform::StringView progId) {
  const auto error = errorOf([&] { win32::system().objects.create(progId); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number, 429);
  EXPECT_EQ(error->description, u"ActiveX component can't create object");
  EXPECT_EQ(error->source, u"mrktxtmsg");
}

TEST(Objects, Create_GivesAnObjectThatCanBeCalled) {
  const Apartment apartment;
  const LateBound made(win32::system().objects.create(dictionary));
  made.call<void>(u"Add", u"one", 1);
  EXPECT_EQ(made.get<std::int32_t>(u"Count"), 1);
}

TEST(Objects, Create_MakesANewOneEachTime) {
  const Apartment apartment;
  const auto first = win32::system().objects.create(dictionary);
  const auto second = win32::system().objects.create(dictionary);
  EXPECT_FALSE(first == second);
}

TEST(Objects, Create_UnknownProgId_IsError429) {
  const Apartment apartment;
  expectCannotCreate(u"mrktxtmsg.NoSuchClass");
  expectCannotCreate(u"");
}

TEST(Objects, Create_ServerThatCannotBeLoaded_IsError429) {
  const Apartment apartment;
  constexpr com::ClassRegistration missing{
      {0x6F1C2D0A, 0x53B1, 0x4E43, {0x9C, 0x1E, 0x5A, 0x3F, 0x7D, 0x20, 0x11, 0x94}}, u"mrktxtmsg.MissingServer", u""};
  ASSERT_EQ(com::registerClass(com::machineClasses, missing, u"C:\\no such folder\\none.dll"), S_OK);
  expectCannotCreate(missing.progId);
  EXPECT_EQ(com::unregisterClass(com::machineClasses, missing), S_OK);
}

TEST(Objects, Create_OnAThreadWithoutCom_IsError429) { expectCannotCreate(dictionary); }

}  // namespace
}  // namespace win32_tests

// The form template, opened by the system's own reader of compound files.

#include <cstring>

#include "addin_library.h"

namespace addin_dll_tests {
namespace {

class FormTemplate : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(StgOpenStorage(win32::wide(productFile(u"mrktxtmsg.oft")), nullptr,
                             STGM_READ | STGM_SHARE_DENY_WRITE | STGM_DIRECT, nullptr, 0, root_.put()),
              S_OK);
  }

  static std::string content(const com::Ptr<IStorage>& storage, const wchar_t* name) {
    com::Ptr<IStream> stream;
    EXPECT_EQ(storage->OpenStream(name, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0, stream.put()), S_OK);
    if (!stream) return {};
    char buffer[512];
    ULONG size = 0;
    EXPECT_EQ(stream->Read(buffer, sizeof buffer, &size), S_OK);
    return {buffer, size};
  }

  static std::uint32_t numberAt(const std::string& bytes, std::size_t offset) {
    std::uint32_t number = 0;
    std::memcpy(&number, bytes.data() + offset, sizeof number);
    return number;
  }

  com::Ptr<IStorage> root_;
};

TEST_F(FormTemplate, Root_IsAMessage) {
  STATSTG info{};
  ASSERT_EQ(root_->Stat(&info, STATFLAG_NONAME), S_OK);
  EXPECT_EQ(com::guidText(com::guidOf(info.clsid)), u"{00020D0B-0000-0000-C000-000000000046}");
}

TEST_F(FormTemplate, MessageClass_IsTheTextMessages) {
  EXPECT_EQ(content(root_, L"__substg1.0_001A001E"), "IPM.Note.TxtMsg");
}

TEST_F(FormTemplate, Properties_AreTheClassAndTheFlagsOfAnUnsentMessage) {
  const std::string bytes = content(root_, L"__properties_version1.0");
  ASSERT_EQ(bytes.size(), 32u + 2 * 16u);
  EXPECT_EQ(bytes.substr(0, 32), std::string(32, '\0'));
  EXPECT_EQ(numberAt(bytes, 32), 0x001A001Eu);
  EXPECT_EQ(numberAt(bytes, 40), sizeof "IPM.Note.TxtMsg");
  EXPECT_EQ(numberAt(bytes, 48), 0x0E070003u);
  EXPECT_EQ(numberAt(bytes, 56), 9u);
}

TEST_F(FormTemplate, NamedProperties_AreThereAndEmpty) {
  com::Ptr<IStorage> names;
  ASSERT_EQ(
      root_->OpenStorage(L"__nameid_version1.0", nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, nullptr, 0, names.put()),
      S_OK);
  for (const wchar_t* table : {L"__substg1.0_00020102", L"__substg1.0_00030102", L"__substg1.0_00040102"})
    EXPECT_EQ(content(names, table), "");
}

}  // namespace
}  // namespace addin_dll_tests

// Form templates: compound files made here byte by byte, sound and damaged.
#include "mailclient/template_file.h"

#include <fstream>

#include "mailclient/compound_file.h"
#include "unit/mailclient/fixture.h"

namespace mailclient {
namespace {

class Bytes {
 public:
  explicit Bytes(std::size_t size, char fill = '\0') : bytes_(size, fill) {}
  Bytes& put(std::size_t at, std::uint64_t value, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i, value >>= 8) bytes_[at + i] = static_cast<char>(value & 0xFF);
    return *this;
  }
  Bytes& text(std::size_t at, StringView value) {
    for (const char16_t c : value) put(at, c, 2), at += 2;
    return *this;
  }
  const std::string& get() const { return bytes_; }

 private:
  std::string bytes_;
};

constexpr std::uint32_t endOfChain = 0xFFFFFFFE;
constexpr std::uint32_t none = 0xFFFFFFFF;

std::string entry(StringView name, int type, std::uint32_t left, std::uint32_t child, std::uint32_t start,
                  std::uint32_t size) {
  return Bytes(128)
      .text(0, name)
      .put(64, (name.size() + 1) * 2, 2)
      .put(66, static_cast<std::uint64_t>(type), 1)
      .put(68, left, 4)
      .put(72, none, 4)
      .put(76, child, 4)
      .put(116, start, 4)
      .put(120, size, 4)
      .get();
}

// Sector 0: FAT, 1: directory, 2: mini FAT, 3: mini stream, which holds the one stream in two mini sectors.
std::string compoundFile(StringView streamName, const std::string& content) {
  Bytes header(512, '\xFF');
  header.put(0, 0xE11AB1A1E011CFD0, 8).put(30, 9, 2).put(32, 6, 2).put(48, 1, 4).put(56, 4096, 4).put(60, 2, 4);
  header.put(68, endOfChain, 4).put(76, 0, 4);
  Bytes table(512, '\xFF');
  table.put(0, 0xFFFFFFFD, 4).put(4, endOfChain, 4).put(8, endOfChain, 4).put(12, endOfChain, 4);
  std::string directory = entry(u"Root Entry", 5, none, 1, 3, 128);
  directory += entry(u"__zz_other", 2, 2, none, endOfChain, 0);
  directory += entry(streamName, 2, none, none, 0, static_cast<std::uint32_t>(content.size()));
  directory.resize(512);
  Bytes miniTable(512, '\xFF');
  miniTable.put(0, 1, 4).put(4, endOfChain, 4);
  std::string miniStream = content;
  miniStream.resize(512);
  return header.get() + table.get() + directory + miniTable.get() + miniStream;
}

std::string wide(StringView text) { return Bytes(text.size() * 2).text(0, text).get(); }

class TemplateFileTest : public testing::Test {
 protected:
  String write(const std::string& bytes) {
    const auto path = std::filesystem::path(testing::TempDir()) / "mailclient_template_test.oft";
    std::ofstream(path, std::ios::binary) << bytes;
    return path.u16string();
  }
};

TEST_F(TemplateFileTest, UnicodeAndAnsiClass_AreRead) {
  const StringView longClass = u"IPM.Note.AClassWhoseNameNeedsTwoMiniSectors";
  EXPECT_EQ(readTemplateClass(write(compoundFile(u"__substg1.0_001A001F", wide(longClass)))), longClass);
  EXPECT_EQ(readTemplateClass(write(compoundFile(u"__substg1.0_001A001E", "IPM.Note.TxtMsg"))), u"IPM.Note.TxtMsg");
}

TEST_F(TemplateFileTest, BackslashesSeparateFoldersEverywhere) {
  String path = write(compoundFile(u"__substg1.0_001A001E", "IPM.Note.TxtMsg"));
  path.replace(path.rfind(u"mailclient_template_test.oft") - 1, 1, u"\\");
  EXPECT_EQ(readTemplateClass(path), u"IPM.Note.TxtMsg");
}

TEST_F(TemplateFileTest, MissingFile_IsTheMailClientsError) {
  expectError(failure::fileNotFound, [] { readTemplateClass(u"Z:\\no\\such\\file.oft"); });
}

TEST_F(TemplateFileTest, OtherFiles_AreRefused) {
  expectError(failure::badFile, [&] { readTemplateClass(write("")); });
  expectError(failure::badFile, [&] { readTemplateClass(write("From: x\r\n\r\nbody")); });
  expectError(failure::badFile, [&] { readTemplateClass(write(compoundFile(u"__substg1.0_0037001E", "subject"))); });
}

TEST_F(TemplateFileTest, DamagedFiles_NeverCrash) {
  const std::string sound = compoundFile(u"__substg1.0_001A001E", "IPM.Note.TxtMsg");
  int readable = 0;
  for (std::size_t at = 0; at < sound.size(); ++at)
    for (const char value : {'\x01', static_cast<char>(0xFF)}) {
      std::string damaged = sound;
      damaged[at] = value;
      const auto file = CompoundFile::read(damaged);
      if (file && file->stream(u"__substg1.0_001A001E")) ++readable;
    }
  EXPECT_GT(readable, 0) << "most bytes do not matter";
  for (std::size_t size = 0; size < sound.size(); size += 7) CompoundFile::read(sound.substr(0, size));
}

TEST_F(TemplateFileTest, ChainInACircle_IsDamaged) {
  std::string bytes = compoundFile(u"__substg1.0_001A001E", std::string(100, 'x'));
  bytes[512 * 3 + 4] = 0;  // the mini FAT's second sector leads back to the first
  bytes[512 * 3 + 5] = bytes[512 * 3 + 6] = bytes[512 * 3 + 7] = 0;
  const auto file = CompoundFile::read(bytes);
  ASSERT_TRUE(file);
  EXPECT_FALSE(file->stream(u"__substg1.0_001A001E"));
}

TEST_F(TemplateFileTest, CreateItemFromTemplate_MakesAnUnsavedItemOfItsClass) {
  const ClientPtr client = MailClient::create();
  const outlook::Application application(client->application().get()->object().automation());
  const auto item = application.CreateItemFromTemplate(write(compoundFile(u"__substg1.0_001A001E", "IPM.Note.TxtMsg")));
  EXPECT_EQ(item.MessageClass(), u"IPM.Note.TxtMsg");
  EXPECT_EQ(item.EntryID(), u"");
  item.FormDescription().Name(u"TxtMsg");
  item.FormDescription().PublishForm(outlook::olPersonalRegistry);
  EXPECT_THAT(client->store().state().forms,
              testing::ElementsAre(PublishedForm{u"IPM.Note.TxtMsg", u"TxtMsg", u"TxtMsg", 2}));
  expectError(failure::fileNotFound, [&] { application.CreateItemFromTemplate(u"nowhere\\mrktxtmsg.oft"); });
}

}  // namespace
}  // namespace mailclient

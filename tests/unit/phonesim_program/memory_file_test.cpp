// A handset's memory between two runs, as a file.
#include "phonesim/memory_file.h"

#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace phonesim {
namespace {

namespace fs = std::filesystem;
using testing::EndsWith;
using testing::UnorderedElementsAre;

class MemoryFileTest : public testing::Test {
 protected:
  void SetUp() override {
    std::random_device random;
    folder_ = fs::path(testing::TempDir()) / ("phonesim_" + std::to_string(random()) + "_" + std::to_string(random()));
    fs::create_directories(folder_);
  }
  void TearDown() override { fs::remove_all(folder_); }

  std::string path(const std::string& name = "a.phone") const { return (folder_ / name).string(); }
  void put(const std::string& text, const std::string& name = "a.phone") const {
    std::ofstream(path(name), std::ios::binary) << text;
  }
  std::string content(const std::string& name = "a.phone") const {
    std::ifstream file(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_)) names.push_back(entry.path().filename().string());
    return names;
  }

  State load() {
    setAside_.clear();
    return loadState(path(), defaults(), setAside_);
  }
  // What is wrong with the file.
  std::string refusal() {
    try {
      load();
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return "nothing";
  }
  static State defaults() {
    State state;
    state.centre = "+46700000000";
    state.memories = {100, 20};
    return state;
  }
  // With something of each kind in it.
  static State sample() {
    State state = defaults();
    state.centre = "+46705008999";
    state.reference = 7;
    state.memories.at(Place::Sim).slots[3] = {Status::ReceivedUnread, {0x07, 0x91, 0x0A}};
    state.memories.at(Place::Phone).slots[100] = {Status::StoredUnsent, {0x0D}};
    state.contacts.at(Place::Sim).put(2, {phone::parseNumber(u"+46701234567").value(), u"Björn Ek"});
    state.waiting.push_back({0x04, 0x05});
    state.travelling.push_back({"+46700000002", "8C5B", {0x06}});
    state.taken.push_back("77A0");
    return state;
  }

  fs::path folder_;
  std::string setAside_;
};

TEST_F(MemoryFileTest, MissingFile_IsTheDefaultsAndStaysMissing) {
  EXPECT_EQ(toText(load()), toText(defaults()));
  EXPECT_EQ(setAside_, "");
  EXPECT_TRUE(fs::is_empty(folder_));
}

TEST_F(MemoryFileTest, WhatWasSaved_ComesBackTheSame) {
  saveState(path(), sample());
  EXPECT_EQ(content(), toText(sample())) << "line ends too";
  EXPECT_EQ(toText(load()), toText(sample()));
  EXPECT_EQ(setAside_, "");
  EXPECT_THAT(files(), UnorderedElementsAre("a.phone"));
}

// Whoever has the old file open, or begins to read while it is saved, has the whole of it: it is never written into.
TEST_F(MemoryFileTest, Save_PutsANewFileInTheOldOnesPlace) {
  saveState(path(), defaults());
  fs::create_hard_link(path(), path("old"));
  saveState(path(), sample());
  EXPECT_EQ(content(), toText(sample()));
  EXPECT_EQ(content("old"), toText(defaults()));
  EXPECT_THAT(files(), UnorderedElementsAre("a.phone", "old"));
}

TEST_F(MemoryFileTest, RemainsOfASaveThatWasKilled_AreNotRead) {
  saveState(path(), sample());
  put("phonesim-memory 1\ncentre +4", "a.phone.new");
  EXPECT_EQ(toText(load()), toText(sample()));
  saveState(path(), defaults());
  EXPECT_EQ(toText(load()), toText(defaults()));
  EXPECT_THAT(files(), UnorderedElementsAre("a.phone"));
}

TEST_F(MemoryFileTest, LinesWithoutSense_TheOthersCountAndTheFileIsKeptAsItWas) {
  const std::string damaged =
      "phonesim-memory 1\ncentre +46705008999\nmessage SM 1 0 0A\nmessage SM one 0 0B\n\x01\xFF\nmessage SM 2 1 0C\r\n";
  put(damaged);
  const State state = load();
  EXPECT_EQ(state.centre, "+46705008999");
  EXPECT_EQ(state.memories.at(Place::Sim).used(), 2);
  EXPECT_EQ(state.memories.at(Place::Sim).slots.at(1), (StoredPdu{Status::ReceivedUnread, {0x0A}}));
  EXPECT_EQ(state.memories.at(Place::Sim).slots.at(2), (StoredPdu{Status::ReceivedRead, {0x0C}}));
  EXPECT_EQ(setAside_, path("a.phone.bad"));
  EXPECT_EQ(content("a.phone.bad"), damaged);
  EXPECT_EQ(content(), damaged) << "reading changes nothing";
  saveState(path(), state);
  EXPECT_EQ(content("a.phone.bad"), damaged);
}

TEST_F(MemoryFileTest, SecondDamagedFile_DoesNotTakeThePlaceOfTheFirst) {
  put("first", "a.phone.bad");
  put("second");
  load();
  EXPECT_EQ(setAside_, path("a.phone.bad2"));
  put("third");
  load();
  EXPECT_EQ(setAside_, path("a.phone.bad3"));
  EXPECT_EQ(content("a.phone.bad"), "first");
  EXPECT_EQ(content("a.phone.bad2"), "second");
  EXPECT_EQ(content("a.phone.bad3"), "third");
}

TEST_F(MemoryFileTest, FolderInItsPlace_IsRefused) {
  fs::create_directory(path());
  EXPECT_EQ(refusal(), path() + " is no file");
  EXPECT_TRUE(fs::is_directory(path()));
}

TEST_F(MemoryFileTest, FileOfAnUnlikelyLength_IsRefused) {
  put("phonesim-memory 1\n");
  fs::resize_file(path(), (64 << 20) + 1);
  EXPECT_EQ(refusal(), path() + " is too long to be a handset's memory");
}

TEST_F(MemoryFileTest, FailingSave_IsReportedAndLeavesTheOldFile) {
  saveState(path(), sample());
  fs::create_directory(path("a.phone.new"));
  EXPECT_THAT([&] { saveState(path(), defaults()); },
              testing::ThrowsMessage<std::runtime_error>(path("a.phone.new") + " cannot be written"));
  EXPECT_EQ(toText(load()), toText(sample()));
  fs::remove(path("a.phone.new"));
  saveState(path(), defaults());
  EXPECT_EQ(toText(load()), toText(defaults()));
}

TEST_F(MemoryFileTest, SaveIntoAFolderThatIsNotThere_IsReported) {
  EXPECT_THAT([&] { saveState(path("nowhere/a.phone"), sample()); },
              testing::ThrowsMessage<std::runtime_error>(EndsWith("a.phone.new cannot be written")));
  EXPECT_TRUE(fs::is_empty(folder_));
}

TEST_F(MemoryFileTest, SaveOverAFolder_IsReported) {
  fs::create_directory(path());
  EXPECT_THROW(saveState(path(), sample()), std::runtime_error);
  EXPECT_TRUE(fs::is_directory(path()));
}

}  // namespace
}  // namespace phonesim

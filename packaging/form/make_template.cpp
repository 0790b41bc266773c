// make_template FILE: writes the form template that the add-in publishes: an item of the text messages' class without
// a design of its own, in the format of message files ([MS-OXMSG]).

#include <cstdio>
#include <fstream>
#include <string_view>

#include "compound_file.h"

namespace {

using form::Bytes;

constexpr std::string_view messageClass = "IPM.Note.TxtMsg";

// Property tags: identifier and type. Texts are in the ANSI form, the only one that the oldest mail clients read.
constexpr std::uint32_t propMessageClass = 0x001A001E;
constexpr std::uint32_t propMessageFlags = 0x0E070003;
constexpr std::uint32_t flagsReadAndUnsent = 0x1 | 0x8;

void append(Bytes& to, std::uint32_t number) {
  for (int shift = 0; shift < 32; shift += 8) to.push_back(static_cast<std::uint8_t>(number >> shift));
}

void appendProperty(Bytes& to, std::uint32_t tag, std::uint32_t value) {
  constexpr std::uint32_t readableAndWritable = 0x2 | 0x4;
  append(to, tag);
  append(to, readableAndWritable);
  append(to, value);
  append(to, std::uint32_t{0});
}

form::Storage messageTemplate() {
  form::Storage message;
  // {00020D0B-0000-0000-C000-000000000046}: a message.
  message.clsid = {0x0B, 0x0D, 0x02, 0, 0, 0, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46};

  Bytes properties(32);  // no recipients, no attachments
  appendProperty(properties, propMessageClass, static_cast<std::uint32_t>(messageClass.size() + 1));
  appendProperty(properties, propMessageFlags, flagsReadAndUnsent);
  message.streams = {{u"__properties_version1.0", properties},
                     {u"__substg1.0_001A001E", Bytes(messageClass.begin(), messageClass.end())}};

  // The three tables of named properties are there even when nothing is in them.
  message.storages = {{u"__nameid_version1.0",
                       {},
                       {{u"__substg1.0_00020102", {}}, {u"__substg1.0_00030102", {}}, {u"__substg1.0_00040102", {}}},
                       {}}};
  return message;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: make_template FILE\n", stderr);
    return 2;
  }
  const Bytes bytes = form::compoundFile(messageTemplate());
  std::ofstream file(argv[1], std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  file.close();
  if (file.fail()) {
    std::fprintf(stderr, "make_template: %s cannot be written\n", argv[1]);
    return 1;
  }
  return 0;
}

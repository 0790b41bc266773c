#include "phone/at/result.h"

#include <span>

#include "phone/at/characters.h"

namespace phone::at {

namespace {

struct Words {
  std::string_view words;  // letters and digits only, in lower case
  int code;
};

// The words of 3GPP TS 24.011, table 8.4, and of 3GPP TS 27.005, 3.2.5, and what modems make of them.
constexpr Words cmsWords[] = {
    {"numbernotassigned", 1},
    {"unassignednumber", 1},
    {"unassignedunallocatednumber", 1},
    {"barredbyoperator", 8},
    {"operatordeterminedbarring", 8},
    {"callbarred", 10},
    {"transferrejected", 21},
    {"shortmessagetransferrejected", 21},
    {"destinationoutofservice", 27},
    {"destinationoutoforder", 27},
    {"unidentifiedsubscriber", 28},
    {"facilityrejected", 29},
    {"unknownsubscriber", 30},
    {"networkoutoforder", 38},
    {"temporaryfailure", 41},
    {"congestion", 42},
    {"resourcesunavailable", 47},
    {"resourcesunavailableunspecified", 47},
    {"facilitynotsubscribed", 50},
    {"requestedfacilitynotsubscribed", 50},
    {"facilitynotimplemented", 69},
    {"requestedfacilitynotimplemented", 69},
    {"invalidtransferreference", 81},
    {"invalidshortmessagetransferreferencevalue", 81},
    {"invalidmessageunspecified", 95},
    {"semanticallyincorrectmessage", 95},
    {"invalidmandatoryinformation", 96},
    {"messagetypenonexistentornotimplemented", 97},
    {"messagenotcompatiblewithshortmessageprotocolstate", 98},
    {"informationelementnonexistentornotimplemented", 99},
    {"protocolerrorunspecified", 111},
    {"interworkingunspecified", 127},
    {"smcentrebusy", 192},
    {"centrebusy", 192},
    {"scbusy", 192},
    {"simstorefull", 208},
    {"simsmsstoragefull", 208},
    {"memoryexceeded", 211},
    {"memorycapacityexceeded", 211},
    {"equipmentfailure", 300},
    {"mefailure", 300},
    {"smsservicereservedbysomethingelse", 301},
    {"smsserviceofmereserved", 301},
    {"smsservicereserved", 301},
    {"operationnotallowed", 302},
    {"operationnotsupported", 303},
    {"invalidpdumodeparameter", 304},
    {"invalidtextmodeparameter", 305},
    {"simnotinserted", 310},
    {"simpinneeded", 311},
    {"simpinrequired", 311},
    {"simpinnecessary", 311},
    {"phonetosimpinneeded", 312},
    {"phsimpinrequired", 312},
    {"phsimpinnecessary", 312},
    {"simfailure", 313},
    {"simbusy", 314},
    {"simwrong", 315},
    {"simpukneeded", 316},
    {"simpukrequired", 316},
    {"simpin2needed", 317},
    {"simpin2required", 317},
    {"simpuk2needed", 318},
    {"simpuk2required", 318},
    {"memoryfailure", 320},
    {"invalidmemoryindex", 321},
    {"memoryfull", 322},
    {"servicecentreaddressunknown", 330},
    {"smscaddressunknown", 330},
    {"nonetworkservice", 331},
    {"nonetwork", 331},
    {"networktimeout", 332},
    {"nocnmaexpected", 340},
    {"nocnmaacknowledgementexpected", 340},
    {"unknown", 500},
    {"unknownerror", 500},
    {"notready", 512},
    {"lowerlayer", 513},
    {"busy", 515},
};

// The words of 3GPP TS 27.007, 9.2.1.
constexpr Words cmeWords[] = {
    {"phonefailure", 0},
    {"noconnectiontophone", 1},
    {"linkreserved", 2},
    {"phoneadaptorlinkreserved", 2},
    {"phoneadapterlinkreserved", 2},
    {"operationnotallowed", 3},
    {"operationnotsupported", 4},
    {"phsimpinrequired", 5},
    {"phsimpinnecessary", 5},
    {"simnotinserted", 10},
    {"simpinrequired", 11},
    {"simpinnecessary", 11},
    {"simpukrequired", 12},
    {"simpuknecessary", 12},
    {"simfailure", 13},
    {"simbusy", 14},
    {"simwrong", 15},
    {"wrongpassword", 16},
    {"incorrectpassword", 16},
    {"simpin2required", 17},
    {"simpuk2required", 18},
    {"memoryfull", 20},
    {"invalidindex", 21},
    {"notfound", 22},
    {"memoryfailure", 23},
    {"texttoolong", 24},
    {"textstringtoolong", 24},
    {"badcharacters", 25},
    {"invalidcharactersintextstring", 25},
    {"nonetworkservice", 30},
    {"networktimeout", 31},
    {"emergencycallsonly", 32},
    {"networknotallowedemergencycallsonly", 32},
    {"unknown", 100},
    {"unknownerror", 100},
};

// "(U)SIM PIN required" and "SIM PIN required" are the same words.
std::string plain(std::string_view words) {
  std::string result;
  for (const char c : words)
    if (isDigit(c) || isLetter(c)) result += static_cast<char>(isLetter(c) ? upper(c) - 'A' + 'a' : c);
  for (std::size_t at = result.find("usim"); at != std::string::npos; at = result.find("usim", at)) result.erase(at, 1);
  return result;
}

int codeOf(std::string_view said, std::span<const Words> table) {
  if (const auto number = wholeNumber(said)) return *number < 0 ? unknownWords : *number;
  const std::string words = plain(said);
  for (const Words& entry : table)
    if (entry.words == words) return entry.code;
  return unknownWords;
}

// What follows "+CMS ERROR:", however the modem spaces it and with or without the plus sign.
std::optional<std::string_view> afterError(std::string_view line, std::string_view family) {
  if (!line.empty() && line.front() == '+') line.remove_prefix(1);
  if (!sameWord(line.substr(0, family.size()), family)) return std::nullopt;
  return after("ERROR", trimmed(line.substr(family.size())));
}

}  // namespace

std::optional<Result> parseResult(std::string_view line) {
  line = trimmed(line);
  if (sameWord(line, "OK")) return Result{Result::Kind::Ok, 0, std::string(line)};
  // The second is what some makers say instead.
  if (sameWord(line, "ERROR") || sameWord(line, "COMMAND NOT SUPPORT"))
    return Result{Result::Kind::Error, 0, std::string(line)};
  if (const auto said = afterError(line, "CMS"))
    return Result{Result::Kind::CmsError, codeOf(*said, cmsWords), std::string(line)};
  if (const auto said = afterError(line, "CME"))
    return Result{Result::Kind::CmeError, codeOf(*said, cmeWords), std::string(line)};
  return std::nullopt;
}

bool isBusy(const Result& result) noexcept {
  for (const int code : {301, 314, 512, 515})
    if (result.isCms(code)) return true;
  return result.isCme(14);
}

}  // namespace phone::at

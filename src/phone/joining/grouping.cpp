#include "phone/joining/grouping.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <tuple>
#include <utility>

namespace phone {
namespace {

using Parts = std::vector<Part*>;

bool samePdu(const Part& one, const Part& other) { return one.pdu == other.pdu; }

bool sameBody(const Part& one, const Part& other) {
  return one.message.dataCoding == other.message.dataCoding && one.message.data == other.message.data;
}

// How far apart two parts are. Their time stamps come from the same service centre; without both, it is when they were
// first seen here.
std::chrono::seconds distance(const Part& one, const Part& other) {
  using std::chrono::seconds;
  if (one.message.timeStamp && other.message.timeStamp)
    return seconds(std::abs(utcSeconds(*one.message.timeStamp) - utcSeconds(*other.message.timeStamp)));
  return std::chrono::abs(std::chrono::duration_cast<seconds>(one.firstSeen - other.firstSeen));
}

bool isRepetition(const Part& one, const Part& other) {
  return one.number() == other.number() && sameBody(one, other) && distance(one, other) <= repetition;
}

// Messages of one slot. A received one that is there several times with every octet the same was delivered once; one
// that was written here only when it is in the same place of both memories, which are then one under two names.
void groupSingles(const Parts& singles, std::vector<Group>& groups) {
  std::map<std::string, std::vector<Parts>> byPdu;
  for (Part* part : singles) {
    std::vector<Parts>& same = byPdu[part->pdu];
    const auto found = std::ranges::find_if(same, [&](const Parts& others) {
      const Slot& other = others.front()->slot;
      return part->message.kind == PduKind::Deliver ||
             (other.index == part->slot.index && other.memory != part->slot.memory);
    });
    if (found == same.end())
      same.push_back({part});
    else
      found->push_back(part);
  }
  for (auto& [pdu, several] : byPdu)
    for (Parts& parts : several) groups.push_back(groupOf(std::move(parts)));
}

// Parts of the same sender, reference and total, put together pair by pair, the nearest pairs first, as long as no two
// different parts claim the same number. That keeps apart what a reference that was used again would mix.
class Clusters {
 public:
  explicit Clusters(const Parts& parts) : parts_(parts) {
    for (std::size_t at = 0; at < parts.size(); ++at) {
      clusters_.push_back({{parts[at]->number(), {at}}});
      clusterOf_.push_back(at);
    }
  }

  std::vector<Parts> joined() {
    for (const auto& [apart, sequence, one, other] : pairs()) tryToJoin(clusterOf_[one], clusterOf_[other]);
    std::vector<Parts> result;
    for (const Cluster& cluster : clusters_) {
      Parts parts;
      for (const auto& [number, members] : cluster)
        for (const std::size_t member : members) parts.push_back(parts_[member]);
      if (!parts.empty()) result.push_back(std::move(parts));
    }
    return result;
  }

 private:
  using Cluster = std::map<int, std::vector<std::size_t>>;  // positions in parts_ by part number

  // Distance, and for equal ones the distance in the order of arrival; then the parts.
  using Pair = std::tuple<std::chrono::seconds, std::uint64_t, std::size_t, std::size_t>;

  std::vector<Pair> pairs() const {
    std::vector<Pair> result;
    for (std::size_t one = 0; one < parts_.size(); ++one)
      for (std::size_t other = one + 1; other < parts_.size(); ++other) {
        // The same delivery in two places comes before all: it must not become two messages.
        const auto apart =
            samePdu(*parts_[one], *parts_[other]) ? std::chrono::seconds(-1) : distance(*parts_[one], *parts_[other]);
        if (apart < referenceAge && fit(one, other))
          result.emplace_back(apart, arrivalDistance(one, other), one, other);
      }
    std::ranges::sort(result);
    return result;
  }

  std::uint64_t arrivalDistance(std::size_t one, std::size_t other) const {
    const auto [first, last] = std::minmax(parts_[one]->sequence, parts_[other]->sequence);
    return last - first;
  }

  bool fit(std::size_t one, std::size_t other) const {
    return parts_[one]->number() != parts_[other]->number() || isRepetition(*parts_[one], *parts_[other]);
  }

  bool fit(const Cluster& one, const Cluster& other) const {
    return std::ranges::all_of(one, [&](const auto& entry) {
      const auto same = other.find(entry.first);
      if (same == other.end()) return true;
      return std::ranges::all_of(entry.second, [&](std::size_t member) {
        return std::ranges::all_of(same->second, [&](std::size_t candidate) { return fit(member, candidate); });
      });
    });
  }

  bool isComplete(const Cluster& cluster) const {
    return cluster.size() == static_cast<std::size_t>(parts_.front()->total());
  }

  void tryToJoin(std::size_t oneIndex, std::size_t otherIndex) {
    if (oneIndex == otherIndex) return;
    Cluster& one = clusters_[oneIndex];
    Cluster& other = clusters_[otherIndex];
    // Two complete ones: the same text was sent twice.
    if (!fit(one, other) || (isComplete(one) && isComplete(other))) return;
    for (auto& [number, members] : other)
      for (const std::size_t member : members) {
        clusterOf_[member] = oneIndex;
        one[number].push_back(member);
      }
    other.clear();
  }

  const Parts& parts_;
  std::vector<Cluster> clusters_;
  std::vector<std::size_t> clusterOf_;
};

// Parts that repeat those of a message that was handed over go with it. Every octet the same: certainly. Otherwise only
// while they are not a message of their own, because a sender may use the same reference for equal beginnings.
class HandedOver {
 public:
  void add(Part* part) { groups_[part->handedOver].push_back(part); }

  bool takeTwin(Part* part) {
    return take(part, [&](const Part& other) { return samePdu(*part, other); });
  }
  bool takeRepetition(Part* part) {
    return take(part, [&](const Part& other) { return isRepetition(*part, other); });
  }

  void moveTo(std::vector<Group>& groups) {
    for (auto& [id, parts] : groups_) groups.push_back(groupOf(std::move(parts)));
  }

 private:
  template <typename Predicate>
  bool take(Part* part, Predicate isSame) {
    for (auto& [id, parts] : groups_) {
      if (std::ranges::none_of(parts, [&](const Part* other) { return isSame(*other); })) continue;
      parts.push_back(part);
      return true;
    }
    return false;
  }

  std::map<std::uint64_t, Parts> groups_;
};

void groupLongOnes(const Parts& parts, std::vector<Group>& groups) {
  HandedOver handedOver;
  // What comes again after its message is gone completes nobody else's: by the message that it belonged to.
  std::map<std::uint64_t, Parts> open;
  for (Part* part : parts)
    if (part->handedOver != 0) handedOver.add(part);
  for (Part* part : parts)
    if (part->handedOver == 0 && !handedOver.takeTwin(part)) open[part->repeated].push_back(part);
  for (const auto& [message, candidates] : open) {
    for (Parts& cluster : Clusters(candidates).joined()) {
      if (!groupOf(cluster).complete)
        std::erase_if(cluster, [&](Part* part) { return handedOver.takeRepetition(part); });
      if (!cluster.empty()) groups.push_back(groupOf(std::move(cluster)));
    }
  }
  handedOver.moveTo(groups);
}

auto keyOf(const Part& part) {
  const Message& message = part.message;
  const Concatenation& concatenation = *message.concatenation;
  return std::tuple(message.kind, message.peer.type, message.peer.plan, message.peer.value, concatenation.reference,
                    concatenation.wide, concatenation.total);
}

}  // namespace

Group groupOf(std::vector<Part*> parts) {
  std::ranges::sort(parts, {}, [](const Part* part) { return std::pair(part->number(), part->sequence); });
  Group group{.parts = std::move(parts)};
  int missing = group.parts.front()->total();
  for (std::size_t at = 0; at < group.parts.size(); ++at) {
    if (at == 0 || group.parts[at]->number() != group.parts[at - 1]->number()) --missing;
    if (group.handedOver == 0) group.handedOver = group.parts[at]->handedOver;
  }
  group.complete = missing == 0;
  return group;
}

std::vector<Group> groupsOf(const std::vector<Part*>& parts) {
  std::vector<Group> groups;
  Parts singles;
  std::map<decltype(keyOf(*parts.front())), Parts> byKey;
  for (Part* part : parts) {
    if (part->total() > 1)
      byKey[keyOf(*part)].push_back(part);
    else
      singles.push_back(part);
  }
  groupSingles(singles, groups);
  for (const auto& [key, several] : byKey) groupLongOnes(several, groups);
  return groups;
}

}  // namespace phone

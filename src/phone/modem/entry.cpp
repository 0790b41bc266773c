#include "phone/modem/entry.h"

#include "phone/at/fields.h"
#include "phone/pdu/decode.h"
#include "phone/pdu/hex.h"

namespace phone {

namespace {

// `fields` has the <stat> at that place and the <length> at its end; the text in between may be missing with its comma.
Entry entryFrom(int index, const std::vector<at::Field>& fields, std::size_t statusAt,
                const std::optional<std::string>& data) {
  Entry entry{{index, Status::ReceivedRead, data.value_or(std::string())}, false};
  if (fields.size() < statusAt + 2) return entry;
  const auto status = fields[statusAt].number();
  if (!status || *status < 0 || *status > 3) return entry;
  entry.message.status = static_cast<Status>(*status);
  const auto length = fields.back().number();
  const auto octets = fromHex(entry.message.pdu);
  entry.whole = length && octets && *length >= 0 && tpduLength(*octets) == static_cast<std::size_t>(*length);
  return entry;
}

}  // namespace

std::optional<Entry> entryOfListing(const at::Information& information) {
  const auto fields = at::fieldsOf(information.text);
  const auto index = fields.front().number();
  if (!index || *index < 0 || *index > mostIndex) return std::nullopt;
  return entryFrom(*index, fields, 1, information.data);
}

Entry entryOfReading(const at::Information& information, int index) {
  return entryFrom(index, at::fieldsOf(information.text), 0, information.data);
}

}  // namespace phone

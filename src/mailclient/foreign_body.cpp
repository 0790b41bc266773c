#include "mailclient/foreign_body.h"

#include "mailclient/text_coding.h"

namespace mailclient {
namespace {

constexpr int deepestPart = 4;

std::string_view headerValue(const std::vector<HeaderLine>& headers, std::string_view name) {
  for (const HeaderLine& line : headers)
    if (isHeader(line, name)) return line.value;
  return {};
}

std::string lowered(std::string_view text) {
  std::string lower(text);
  for (char& c : lower)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return lower;
}

// A parameter of a Content-Type: charset=utf-8, boundary="x y".
std::string parameter(std::string_view contentType, std::string_view name) {
  const std::string lower = lowered(contentType);
  const std::size_t at = lower.find(std::string(name) + "=");
  if (at == std::string::npos) return {};
  std::string_view value = contentType.substr(at + name.size() + 1);
  if (!value.empty() && value.front() == '"') {
    value.remove_prefix(1);
    return std::string(value.substr(0, value.find('"')));
  }
  return std::string(value.substr(0, value.find_first_of("; \t\r\n")));
}

String withLineBreaks(StringView text) {
  String result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == u'\n' && (i == 0 || text[i - 1] != u'\r')) result += u'\r';
    result += text[i];
  }
  return result;
}

// The parts between the boundary lines.
std::vector<std::string_view> partsOf(std::string_view body, const std::string& boundary) {
  const std::string mark = "--" + boundary;
  std::vector<std::string_view> parts;
  std::size_t start = std::string_view::npos;
  for (std::size_t at = 0; at < body.size();) {
    const std::size_t newline = body.find('\n', at);
    const std::size_t end = newline == std::string_view::npos ? body.size() : newline + 1;
    if (body.substr(at, mark.size()) == mark) {
      if (start != std::string_view::npos) parts.push_back(body.substr(start, at - start));
      start = body.substr(at + mark.size(), 2) == "--" ? std::string_view::npos : end;
    }
    at = end;
  }
  if (start != std::string_view::npos && start < body.size()) parts.push_back(body.substr(start));  // cut off
  return parts;
}

String textOf(const std::vector<HeaderLine>& headers, std::string_view body, int depth) {
  const std::string_view contentType = headerValue(headers, "Content-Type");
  const std::string kind = lowered(contentType.substr(0, contentType.find(';')));
  if (kind.rfind("multipart/", 0) == 0 && depth < deepestPart) {
    for (const std::string_view part : partsOf(body, parameter(contentType, "boundary"))) {
      std::string_view partBody;
      const auto partHeaders = splitMessage(part, partBody);
      const std::string partKind = lowered(headerValue(partHeaders, "Content-Type"));
      if (partKind.empty() || partKind.rfind("text/plain", 0) == 0 || partKind.rfind("multipart/", 0) == 0)
        return textOf(partHeaders, partBody, depth + 1);
    }
  }
  const std::string encoding = lowered(headerValue(headers, "Content-Transfer-Encoding"));
  std::string bytes(body);
  if (encoding == "quoted-printable") bytes = fromQuotedPrintable(body);
  if (encoding == "base64") bytes = fromBase64(body);
  std::string charset = parameter(contentType, "charset");
  if (charset.empty()) charset = isUtf8(bytes) ? "utf-8" : "iso-8859-1";
  return withLineBreaks(decodeCharset(charset, bytes));
}

}  // namespace

String foreignBody(const std::vector<HeaderLine>& headers, std::string_view body) { return textOf(headers, body, 0); }

}  // namespace mailclient

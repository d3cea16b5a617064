#include "kestrix/store/reference_codec.h"

#include <algorithm>
#include <tuple>

#include "kestrix/store/byte_codec.h"
#include "kestrix/store/corrupt_index.h"

namespace kestrix::index {
namespace {

auto target_of(const StoredReference& to) { return std::tie(to.target, to.declaration, to.name); }

auto identity(const StoredReference& to) {
  return std::tie(to.target, to.declaration, to.name, to.role, to.within);
}

void join(std::vector<StoredReference>& references) {
  std::ranges::sort(references, {}, [](const StoredReference& to) {
    return std::tuple_cat(identity(to), std::tie(to.line));
  });
  std::size_t kept = 0;
  for (std::size_t at = 0; at < references.size(); ++at) {
    if (kept > 0 && identity(references[kept - 1]) == identity(references[at])) {
      references[kept - 1].count += references[at].count;
    } else {
      if (kept != at) references[kept] = std::move(references[at]);
      ++kept;
    }
  }
  references.resize(kept);
}

}  // namespace

std::string encode_references(std::vector<StoredReference> references) {
  join(references);
  Encoder to;
  for (std::size_t at = 0; at < references.size();) {
    std::size_t end = at;
    while (end < references.size() && target_of(references[end]) == target_of(references[at]))
      ++end;
    const StoredReference& target = references[at];
    to.number(static_cast<std::uint64_t>(target.target));
    to.number(target.declaration);
    if (target.declaration == 0) to.text(target.name);
    to.number(end - at);
    for (; at < end; ++at) {
      to.number(static_cast<std::uint8_t>(references[at].role));
      to.number(references[at].within);
      to.number(references[at].line);
      to.number(references[at].count);
    }
  }
  return to.take();
}

std::vector<ReferenceView> decode_references(std::string_view bytes) {
  std::vector<ReferenceView> references;
  for (Decoder from(bytes); !from.rest().empty();) {
    ReferenceView to;
    to.target = from.number<std::int64_t>();
    to.declaration = from.number<std::uint32_t>();
    if (to.declaration == 0) to.name = from.text();
    for (auto left = from.number<std::uint32_t>(); left > 0; --left) {
      const auto role = from.number<std::uint8_t>();
      if (role >= kRoleNames.size()) throw CorruptIndex("a reference of no role");
      to.role = static_cast<Role>(role);
      to.within = from.number<std::uint32_t>();
      to.line = from.number<std::uint32_t>();
      to.count = from.number<std::uint32_t>();
      references.push_back(to);
    }
  }
  return references;
}

}  // namespace kestrix::index

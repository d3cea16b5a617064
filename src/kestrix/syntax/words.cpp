#include "kestrix/syntax/words.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {
namespace {

constexpr std::size_t kBytesPerWord = 32;  // distinct words are fewer than words
constexpr std::size_t kFewestSlots = 64;

}  // namespace

void WordCounts::reset(std::size_t bytes) {
  slots_.assign(std::bit_ceil(std::max(bytes / kBytesPerWord, kFewestSlots)), Entry{});
  used_ = 0;
}

const WordCounts::Entry& WordCounts::slot(std::string_view word) const {
  const std::size_t mask = slots_.size() - 1;
  std::size_t at = seeded_hash(word) & mask;
  while (slots_[at].word.data() != nullptr && slots_[at].word != word) at = (at + 1) & mask;
  return slots_[at];
}

WordCounts::Entry& WordCounts::slot(std::string_view word) {
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): only the view of it is const
  return const_cast<Entry&>(std::as_const(*this).slot(word));
}

void WordCounts::grow() {
  std::vector<Entry> old(slots_.size() * 2);
  old.swap(slots_);
  for (const Entry& entry : old) {
    if (entry.word.data() != nullptr) slot(entry.word) = entry;
  }
}

void WordCounts::add(std::string_view word) {
  Entry& entry = slot(word);
  ++entry.count;
  if (entry.word.data() != nullptr) return;
  entry.word = word;
  if (++used_ * 2 > slots_.size()) grow();
}

void WordCounts::remove(std::string_view word) {
  Entry& entry = slot(word);
  if (entry.count > 0) --entry.count;
}

std::uint32_t WordCounts::operator[](std::string_view word) const {
  return slots_.empty() ? 0 : slot(word).count;
}

std::vector<WordCounts::Entry> WordCounts::entries() const {
  std::vector<Entry> found;
  std::ranges::copy_if(slots_, std::back_inserter(found),
                       [](const Entry& e) { return e.count > 0; });
  std::ranges::sort(found, {}, &Entry::word);
  return found;
}

}  // namespace kestrix::index

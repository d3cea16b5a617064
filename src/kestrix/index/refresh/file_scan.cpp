#include "kestrix/index/refresh/file_scan.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "kestrix/documents/document_reader.h"
#include "kestrix/files/classification.h"
#include "kestrix/files/file_reading.h"
#include "kestrix/index/refresh/data_definitions.h"
#include "kestrix/index/refresh/note_taking.h"
#include "kestrix/languages/data_languages.h"
#include "kestrix/languages/language.h"
#include "kestrix/languages/reading.h"
#include "kestrix/roles/generated.h"
#include "kestrix/store/content_hash.h"
#include "kestrix/store/facts_codec.h"
#include "kestrix/store/notes_codec.h"
#include "kestrix/text/ascii.h"
#include "kestrix/text/decoding.h"
#include "kestrix/text/paths.h"

namespace kestrix::index {
namespace {

using std::chrono::milliseconds;
using std::chrono::nanoseconds;

// Above this the trees of several files at once would make the peak of memory.
constexpr std::size_t kParsedAloneBytes = std::size_t{512} << 10;

// How late a change may happen after a stamp was taken and still leave the same stamp behind: a
// tick of the kernel's clock, or the whole seconds of some file systems.
constexpr nanoseconds kTick = milliseconds(20);
constexpr nanoseconds kCoarseTick = milliseconds(2500);

bool is_settled(const FileStamp& stamp, nanoseconds now) {
  const auto changed = nanoseconds(std::max(stamp.changed_ns, stamp.modified_ns));
  const bool coarse = changed % std::chrono::seconds(1) == nanoseconds::zero();
  return changed + (coarse ? kCoarseTick : kTick) < now;
}

nanoseconds now() { return std::chrono::system_clock::now().time_since_epoch(); }

FileStamp lasting_stamp(const FileBytes& file, nanoseconds before) {
  FileStamp stamp = file.stamp;
  if (file.changed || !is_settled(stamp, before)) stamp.size = -1;
  return stamp;
}

std::optional<FileFacts> parse(const Language& language, std::string_view text) {
  static std::mutex alone;
  std::unique_lock<std::mutex> lock;
  if (text.size() > kParsedAloneBytes) lock = std::unique_lock(alone);
  return read_facts(language, text);
}

// MANIFESTO, HACKING, but also BUILD: whether it is prose only the text tells.
bool is_capital_name(std::string_view path) {
  const auto name = path.substr(path.rfind('/') + 1);
  return name.size() > 3 && std::ranges::all_of(name, [](char c) {
           return ascii::is_upper(c) || c == '_' || c == '-';
         });
}

void take_facts(ScannedFile& file, const Language& language, std::string_view text) {
  FileRow& row = file.row;
  const auto facts = parse(language, text);
  row.traits.set(facts ? Trait::kParsed : Trait::kGaveUp);
  if (!facts) return;
  row.traits.set(Trait::kCrowded, facts->dropped > 0);
  const FactsOrigin origin{row.path, row.hash};
  file.facts = {.facts = encode_facts(*facts, origin),
                .symbols = encode_symbols(facts->symbols),
                .declarations = encode_declarations(facts->declarations),
                .mentions = encode_mentions(facts->mentions, origin)};
}

// All that is taken from a text is taken here, while it is in hand.
void take_text(ScannedFile& file, const Language* language, std::string_view text) {
  FileRow& row = file.row;
  row.data = data_definitions(row.path, text);
  if (row.traits.has(Trait::kLarge)) return;
  row.traits.set(Trait::kGenerated, is_generated(row.path, text));
  row.traits.set(Trait::kMinified, is_minified(row.path, text));
  if (language == nullptr && is_capital_name(row.path) && is_prose(text)) {
    row.traits.set(Trait::kDocument);
  }
  const bool is_document = row.traits.has(Trait::kDocument);
  const FileNotes notes = take_notes(row.path, text, is_document);
  const bool attributes = base_name(row.path) == ".gitattributes";
  row.traits.set(Trait::kCrowded, attributes && notes.attributes.size() < text.size());
  file.notes = encode_notes(notes);
  if (language != nullptr && !row.traits.has(Trait::kMinified)) take_facts(file, *language, text);
}

// By its first bytes: translations, projects and layouts in XML bear extensions of languages.
bool is_xml(std::string_view text) {
  const auto start = std::ranges::find_if_not(text, ascii::is_space);
  text.remove_prefix(static_cast<std::size_t>(start - text.begin()));
  return text.starts_with("<?xml") || text.starts_with("<!DOCTYPE");
}

const Language* language_of_text(std::string_view path, std::string_view text) {
  constexpr std::array<std::string_view, 3> kWithinMarkup = {"php", "svelte", "vue"};
  const Language* language = language_of(path);
  if (language == nullptr || !is_xml(text)) return language;
  const bool holds = std::ranges::find(kWithinMarkup, language->name) != kWithinMarkup.end();
  return holds ? language : nullptr;
}

void take_content(ScannedFile& file, FileBytes content) {
  FileRow& row = file.row;
  row.traits.set(Trait::kLarge, content.truncated);
  if (is_binary(content.bytes)) return row.traits.set(Trait::kBinary);
  const std::string text = decode_text(std::move(content.bytes));
  const Language* language = language_of_text(row.path, text);
  row.traits.set(Trait::kDocument, language == nullptr && is_document_path(row.path));
  if (language != nullptr) row.language = language->name;
  take_text(file, language, text);
}

// What was read of a file is what its row and its facts are made of.
bool has_same_content(const std::optional<FileRow>& known, const FileBytes& content,
                      const ContentHash& hash) {
  return known && known->hash == hash && !known->traits.has(Trait::kUnreadable) &&
         known->traits.has(Trait::kLarge) == content.truncated;
}

}  // namespace

ScannedFile scan_file(const RootDirectory& root, const ScanTask& task) {
  const auto before = now();
  const bool may_define_data = definition_scan_of(task.path) != nullptr;
  FileBytes content = read_source(root, task.path, may_define_data ? kMostScannedBytes : 0);
  ScannedFile file;
  if (content.status == ReadStatus::kVanished) {
    file.outcome = ScanOutcome::kVanished;
    return file;
  }
  file.row.path = task.path;
  if (task.known) file.row.id = task.known->id;
  if (content.status == ReadStatus::kUnreadable) {
    file.row.traits.set(Trait::kUnreadable);
    file.row.stamp.size = -1;
    if (task.known && task.known->traits == file.row.traits) file.outcome = ScanOutcome::kUnchanged;
    return file;
  }
  const FileStamp stamp = lasting_stamp(content, before);
  const ContentHash hash = content_hash(content.bytes);
  if (has_same_content(task.known, content, hash)) {
    file.outcome = ScanOutcome::kUnchanged;
    file.row = *task.known;
  } else {
    file.row.hash = hash;
    take_content(file, std::move(content));
  }
  file.row.stamp = stamp;
  return file;
}

}  // namespace kestrix::index

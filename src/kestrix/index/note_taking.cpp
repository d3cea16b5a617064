#include "kestrix/index/note_taking.h"

#include "kestrix/documents/document_reader.h"
#include "kestrix/roles/licence.h"
#include "kestrix/store/content_hash.h"
#include "kestrix/text/paths.h"

namespace kestrix::index {
namespace {

constexpr std::size_t kMostAttributes = std::size_t{64} << 10U;

}  // namespace

FileNotes take_notes(std::string_view path, std::string_view text, bool is_document) {
  FileNotes notes;
  if (base_name(path) == ".gitattributes") {
    notes.attributes = text.substr(0, kMostAttributes);
  } else if (is_licence_path(path)) {
    notes.holders = copyright_holders(text);
    notes.content = quick_hash(text);
  } else if (is_document) {
    notes.document = read_document(path, text);
    notes.content = quick_hash(text);
  } else {
    notes.documents = documents_named_in(text);
  }
  return notes;
}

}  // namespace kestrix::index

#include "kestrix/store/notes_codec.h"

#include <cstdint>

#include "kestrix/store/byte_codec.h"
#include "kestrix/store/corrupt_index.h"

namespace kestrix::index {
namespace {

void write_text(Encoder& to, const std::string& text) { to.text(text); }

void write_number(Encoder& to, std::uint32_t number) { to.number(number); }

std::string read_text(Decoder& from) { return std::string(from.text()); }

std::uint32_t read_number(Decoder& from) { return from.number<std::uint32_t>(); }

void write_document(Encoder& to, const DocumentFacts& facts) {
  for (const std::uint32_t number :
       {facts.lines, facts.code_lines, facts.commands, facts.words, facts.addressed,
        facts.outward_links, facts.numbered_headings}) {
    to.number(number);
  }
  to.list(facts.headings, write_number);
  to.list(facts.links, write_text);
  to.list(facts.names, write_text);
}

DocumentFacts read_document(Decoder& from) {
  DocumentFacts facts;
  for (std::uint32_t* number : {&facts.lines, &facts.code_lines, &facts.commands, &facts.words,
                                &facts.addressed, &facts.outward_links, &facts.numbered_headings}) {
    *number = from.number<std::uint32_t>();
  }
  facts.headings = from.list<std::uint32_t>(read_number);
  facts.links = from.list<std::string>(read_text);
  facts.names = from.list<std::string>(read_text);
  return facts;
}

}  // namespace

std::string encode_notes(const FileNotes& notes) {
  if (notes.empty()) return {};
  Encoder to;
  to.number(notes.document ? 1 : 0);
  if (notes.document) write_document(to, *notes.document);
  to.list(notes.documents, write_text);
  to.text(notes.attributes);
  to.list(notes.holders, write_text);
  to.list(notes.keys, write_text);
  to.number(notes.content);
  return to.take();
}

FileNotes decode_notes(std::string_view bytes) {
  Decoder from(bytes);
  FileNotes notes;
  if (from.number<std::uint8_t>() != 0) notes.document = read_document(from);
  notes.documents = from.list<std::string>(read_text);
  notes.attributes = from.text();
  notes.holders = from.list<std::string>(read_text);
  notes.keys = from.list<std::string>(read_text);
  notes.content = from.number<std::uint64_t>();
  if (!from.rest().empty()) throw CorruptIndex("notes that do not end");
  return notes;
}

}  // namespace kestrix::index

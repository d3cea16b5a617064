#include "kestrix/host/decisions/document_reason.h"

#include <fmt/format.h>

#include <algorithm>
#include <initializer_list>
#include <string>
#include <vector>

#include "kestrix/host/decisions/document_place.h"
#include "kestrix/host/index_evidence.h"

namespace kestrix {
namespace {

std::string listed(std::initializer_list<std::string> parts) {
  std::string text;
  for (const auto& part : parts) {
    if (part.empty()) continue;
    text += (text.empty() ? "" : ", ") + part;
  }
  return text;
}

std::string counted_or_none(std::size_t count, std::string_view one, std::string_view many) {
  return count == 0 ? std::string() : counted(count, one, many);
}

std::string names_of(const DocumentView& view) {
  const auto names = listed({counted_or_none(view.sources.size(), "source file", "source files"),
                             counted_or_none(view.folders.size(), "folder", "folders"),
                             counted_or_none(view.types.size(), "type", "types")});
  return names.empty() ? names : "names " + names;
}

std::string pointers_to(const DocumentView& view) {
  const auto look = std::ranges::find_if(view.linked_from, is_where_developers_look);
  const auto from = look != view.linked_from.end() ? fmt::format("linked from {}", *look)
                    : view.linked_from.empty()     ? std::string()
                                               : fmt::format("linked from {}", view.linked_from[0]);
  return listed(
      {from, view.named_in.empty()
                 ? std::string()
                 : "named in " + counted(view.named_in.size(), "source file", "source files")});
}

std::vector<Place> places_of(const DocumentView& view) {
  std::vector<Place> places;
  for (const auto* list : {&view.linked_from, &view.named_in}) {
    for (const auto path : *list) {
      if (places.size() < kMostPlaces) places.push_back({std::string(path), 0, {}});
    }
  }
  return places;
}

}  // namespace

Reason document_reason(std::string_view kind, std::string_view sign, const DocumentView* view) {
  Reason reason{std::string(kind), std::string(sign), 0, {}};
  if (view == nullptr) return reason;
  reason.text = listed({std::string(sign), names_of(*view), pointers_to(*view)});
  reason.count = view->names();
  reason.at = places_of(*view);
  return reason;
}

}  // namespace kestrix

#pragma once

#include <set>
#include <vector>

#include "kestrix/host/evidence/score_sheet.h"
#include "kestrix/languages/frameworks.h"

namespace kestrix {

/// The product's error types, as all groups of signals ask for them.
struct ErrorView {
  const CodeEvidence& code;
  const std::set<index::DeclarationRef>& types;

  /// Whether the reference names an error type of the product.
  bool names_type(const index::IndexedReference& to) const;
  /// The product's declarations that call or make something that is known.
  std::set<index::DeclarationRef> holders_calling(index::Known known) const;
  std::vector<Place> places_of(const std::set<index::DeclarationRef>& declarations) const;
};

/// Whether a declaration's name says that it is about errors.
bool names_error(std::string_view name);

/// Whether something of that kind can be called.
bool is_callable(index::DeclarationKind kind);

// The groups of signals that the sheet of the page is made of. Each looks at the product alone.

/// Of the files that define error types: who extends, throws and names them, what makes them.
void add_definition_signals(const ErrorView& errors, ScoreSheet& sheet);
/// Of the files that make, throw and tell apart errors.
void add_use_signals(const ErrorView& errors, ScoreSheet& sheet);
/// Of the files that a framework or the product's start hands errors to.
void add_handler_signals(const ErrorView& errors, ScoreSheet& sheet);
/// Of the files through which others end: requests by an answer, the program by its end.
void add_ending_signals(const ErrorView& errors, ScoreSheet& sheet);
/// What the names of declarations say of errors, by who uses them. The error types are scored by
/// what is done with them instead.
void add_name_signals(const ErrorView& errors, ScoreSheet& sheet);

}  // namespace kestrix

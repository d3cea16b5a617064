#pragma once

#include <cstddef>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "kestrix/host/evidence/code_evidence.h"

namespace kestrix {

/// A type that one adds to the product by implementing it.
struct Contract {
  index::DeclarationRef type;
  std::vector<index::DeclarationRef>
      implementers;                   ///< the product's, in all generations; ascending
  std::vector<index::FileId> files;   ///< the implementers' files other than its own; ascending
  std::size_t folders = 0;            ///< that those files lie in
  std::size_t users = 0;              ///< product files that name it in any role but as a base
  std::size_t test_implementers = 0;  ///< files of tests that implement it
  std::size_t lookups = 0;  ///< product files that hand over the type itself, to be looked up
  double quiet = 0;         ///< share of the implementers' files that hardly anybody names
  double called = 0;        ///< share of those files that have members of its own to be called
  bool data = false;        ///< asks for values alone, not for anything to be done
  bool open = false;        ///< says what to implement: an interface, or members without a body
};

/// The contracts of a repository, by type.
///
/// An interface, trait, protocol or abstract type counts when two other files of the product
/// implement it, when one in another folder does and several files ask for it by name, or when the
/// product brings an implementation and tests bring others, or when the product asks for it and
/// several tests implement it. Types that have all methods of a protocol implement it, whether they
/// name it or not. A type that says nothing of what to implement counts when files of several
/// folders extend it, or very many. Error types, mixins and markers are no contracts.
std::vector<Contract> contracts_of(const CodeEvidence& evidence);

/// How much a contract weighs on the page, by who implements it and who asks for it.
double weight_of(const Contract& contract);

}  // namespace kestrix

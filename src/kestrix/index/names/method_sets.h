#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string_view>
#include <utility>
#include <vector>

#include "kestrix/index/tables/declaration_table.h"
#include "kestrix/index/tables/indexed_files.h"

namespace kestrix::index {

/// Which interfaces the types of Go satisfy without saying so: those whose methods they all have,
/// by name and number of parameters.
///
/// An interface that embeds one from another package is left out, since its methods are not all
/// known; of a type, methods that it has by embedding are known within its package only. Found when
/// one first asks, in time linear in the methods: a type is tried on a bounded number of interfaces
/// that share its methods.
/// Safe to use from several threads.
class MethodSets {
 public:
  MethodSets(const IndexedFiles& files, const DeclarationTable& table)
      : files_(files), table_(table) {}

  struct Satisfied {
    std::uint32_t type;  ///< place in the file, from zero
    DeclarationRef contract;
  };
  struct Found {
    std::vector<Satisfied> satisfied;  ///< by type, then interface; at most `kMostContracts` a type
    bool cut = false;                  ///< there may be more
  };
  Found of(FileId file) const;

  static constexpr std::size_t kMostContracts = 64;

 private:
  using Method = std::pair<std::string_view, std::uint32_t>;  // name, parameters
  using Methods = std::vector<Method>;                        // ascending
  using Package = std::string_view;                           // its folder
  enum class State : std::uint8_t { kPlain, kOpen, kWhole };  // whether it has what it embeds
  struct Type {
    DeclarationRef at;
    Methods methods;
    bool contract = false;
    bool complete = true;
    State state = State::kPlain;
  };

  void gather() const;
  void gather(FileId file) const;
  std::vector<DeclarationRef> contracts_of(const Type& type, bool& cut) const;
  void embed(Package package, Type& type, unsigned depth) const;

  const IndexedFiles& files_;
  const DeclarationTable& table_;
  mutable std::once_flag once_;
  mutable std::map<std::pair<Package, std::string_view>, Type> types_;
  mutable std::map<Method, std::vector<const Type*>> contracts_;  // by their rarest method
};

}  // namespace kestrix::index

#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrix {

/// What a file is to its repository. A file with none of these roles is the product; one may have
/// several ("generated" and "test").
enum class Role : std::uint8_t {
  kTest,           ///< a test, or what lies in a folder of tests
  kTestData,       ///< what tests read: recorded output, inputs, made-up projects
  kSample,         ///< shows how the product is used
  kTool,           ///< serves those who develop the product
  kMigration,      ///< a step from one state of stored data to the next
  kGenerated,      ///< written by a program
  kVendored,       ///< another project's, kept here
  kDocumentation,  ///< of the documentation: its texts, its tools, its samples
  kArchived,       ///< kept for the record
};

inline constexpr std::array kRoles{Role::kTest,     Role::kTestData,      Role::kSample,
                                   Role::kTool,     Role::kMigration,     Role::kGenerated,
                                   Role::kVendored, Role::kDocumentation, Role::kArchived};

/// "test", "test data", "sample" …
std::string_view name_of(Role role);

/// A set of roles.
class Roles {
 public:
  constexpr Roles() = default;
  constexpr explicit Roles(std::uint16_t bits) : bits_(bits) {}

  constexpr void add(Role role) { bits_ = static_cast<std::uint16_t>(bits_ | bit(role)); }
  constexpr void add(Roles roles) { bits_ = static_cast<std::uint16_t>(bits_ | roles.bits_); }
  constexpr void remove(Role role) { bits_ = static_cast<std::uint16_t>(bits_ & ~bit(role)); }
  constexpr bool has(Role role) const { return (bits_ & bit(role)) != 0; }
  constexpr bool empty() const { return bits_ == 0; }
  constexpr std::uint16_t bits() const { return bits_; }

  friend constexpr bool operator==(const Roles&, const Roles&) = default;

 private:
  static constexpr std::uint16_t bit(Role role) {
    return static_cast<std::uint16_t>(1U << static_cast<unsigned>(role));
  }

  std::uint16_t bits_ = 0;
};

/// One role with what shows it: "below the test folder tests/", "linguist-vendored in
/// .gitattributes:3".
struct RoleEvidence {
  Role role;
  std::string text;

  friend bool operator==(const RoleEvidence&, const RoleEvidence&) = default;
};

/// The roles that a list of evidence shows.
Roles roles_of(const std::vector<RoleEvidence>& evidence);

}  // namespace kestrix

#include <array>
#include <string_view>

#include "kestrix/definitions/evidence.h"

namespace kestrix {
namespace {

using enum EvidenceKind;

constexpr auto kRubyExtensions = std::to_array<std::string_view>({"rb"});
constexpr std::array kRuby{
    Evidence{kEntity,
             R"(^[ \t]*class\s+[\w:]+\s*<\s*(?:::)?(?:ApplicationRecord|ActiveRecord::Base|)"
             R"(Sequel::Model)\b)"},
    Evidence{kEntity, R"(^[ \t]*include\s+(?:::)?Mongoid::Document\b)"},
    Evidence{kDdlCall, R"(^[ \t]*create_table[ (]\s*["':])"},
    Evidence{kMapping, R"(^[ \t]*(?:belongs_to|has_many|has_one|has_and_belongs_to_many)\s+:)"},
    Evidence{kRecord, R"(\b(?:Struct\.new|Data\.define)\b|<\s*(?:Dry::Struct|T::Struct)\b)"},
};

}  // namespace

const DataLanguage& ruby_data() {
  static constexpr DataLanguage kLanguage{kRubyExtensions, DataSyntax::kCode, kRuby};
  return kLanguage;
}

}  // namespace kestrix

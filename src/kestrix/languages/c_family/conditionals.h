#pragma once

#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrix::index {

/// What to take out of a text of C or C++ so that its conditionals ("#if" … "#endif") stand only
/// where a grammar knows them: ranges of bytes, ascending.
///
/// A conditional whose branches are whole statements, declarations or enumerators stays. Of another
/// one, inside of an expression or with half a block, the first branch alone is left; of those that
/// hold whole elements of a list all are. What "#if 0" excludes goes in any case.
std::vector<std::pair<std::uint32_t, std::uint32_t>> broken_conditionals(std::string_view text);

}  // namespace kestrix::index

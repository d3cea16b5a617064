#include "kestrix/store/signals_codec.h"

#include <array>
#include <cstdint>

#include "kestrix/store/byte_codec.h"
#include "kestrix/store/corrupt_index.h"

namespace kestrix::index {
namespace {

constexpr std::array kCounts{&DataSignals::tables,   &DataSignals::alterations,
                             &DataSignals::entities, &DataSignals::schemas,
                             &DataSignals::records,  &DataSignals::columns};
constexpr unsigned kSchemaFile = 1;
constexpr unsigned kMadeByProgram = 2;

}  // namespace

std::string encode_signals(const DataSignals& signals) {
  if (!signals.any()) return {};
  Encoder to;
  to.number((signals.schema_file ? kSchemaFile : 0) |
            (signals.made_by_program ? kMadeByProgram : 0));
  for (const auto count : kCounts) to.number(signals.*count);
  return to.take();
}

DataSignals decode_signals(std::string_view bytes) {
  DataSignals signals;
  if (bytes.empty()) return signals;
  Decoder from(bytes);
  const auto flags = from.number<std::uint8_t>();
  signals.schema_file = (flags & kSchemaFile) != 0;
  signals.made_by_program = (flags & kMadeByProgram) != 0;
  for (const auto count : kCounts) signals.*count = from.number<std::uint32_t>();
  if (!from.rest().empty()) throw CorruptIndex("signals with something behind them");
  return signals;
}

}  // namespace kestrix::index

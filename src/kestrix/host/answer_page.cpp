#include "kestrix/host/pages.h"

namespace kestrix {

PageAnswer answer_page(const WikiGenerator& generator, const Page& page) {
  PageAnswer answer = page.answer(generator);
  const Steering* steering = generator.steering();
  if (steering != nullptr) steering->apply(page.name, generator.indexed(), answer);
  return answer;
}

FlowsAnswer answer_flows(const WikiGenerator& generator, std::span<const std::string> patterns) {
  FlowsAnswer answer = flows_answer(generator, patterns);
  if (generator.steering() != nullptr) generator.steering()->apply(answer);
  return answer;
}

}  // namespace kestrix

#include "kestrix/formats/xml.h"

#include <algorithm>
#include <pugixml.hpp>

#include "kestrix/formats/limits.h"
#include "kestrix/formats/scalar_readers.h"
#include "kestrix/text/ascii.h"

namespace kestrix::index {
namespace {

bool is_crowded(std::string_view text) {
  const auto begins_value = [](char c) { return c == '<' || c == '='; };
  return static_cast<std::size_t>(std::ranges::count_if(text, begins_value)) > kMostValues;
}

// The library keeps what stands before the damage.
void parse(std::string_view text, pugi::xml_document& document) {
  if (is_crowded(text)) return;
  document.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8);
}

bool is_text(const pugi::xml_node& node) {
  return node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
}

// Finds the lines of places that ascend.
class Lines {
 public:
  explicit Lines(std::string_view text) : text_(text) {}

  std::size_t at(std::ptrdiff_t place) {
    const auto end =
        std::min(static_cast<std::size_t>(std::max<std::ptrdiff_t>(place, 0)), text_.size());
    for (; counted_ < end; ++counted_) line_ += text_[counted_] == '\n' ? 1U : 0U;
    return line_;
  }

 private:
  std::string_view text_;
  std::size_t counted_ = 0;
  std::size_t line_ = 1;
};

class ScalarWalker : public pugi::xml_tree_walker {
 public:
  ScalarWalker(std::string_view text, const ScalarVisitor& visit) : lines_(text), visit_(visit) {}

  bool for_each(pugi::xml_node& node) override {
    const auto above = static_cast<std::size_t>(depth());
    if (above >= kDeepest) return true;
    path_.resize(std::min(path_.size(), above));
    const std::size_t line = lines_.at(node.offset_debug());
    if (node.type() == pugi::node_element) {
      path_.emplace_back(node.name());
      visit_attributes(node);
    } else if (is_text(node)) {
      visit_({path_, ascii::trim(node.value()), line});
    }
    return true;
  }

 private:
  void visit_attributes(const pugi::xml_node& element) {
    for (const pugi::xml_attribute attribute : element.attributes()) {
      path_.push_back("@" + std::string(attribute.name()));
      const auto place = attribute.name() - element.name() + element.offset_debug();
      visit_({path_, attribute.value(), lines_.at(place)});
      path_.pop_back();
    }
  }

  Lines lines_;
  const ScalarVisitor& visit_;
  std::vector<std::string> path_;
};

class ElementWalker : public pugi::xml_tree_walker {
 public:
  ElementWalker(std::string_view text, const std::function<void(const XmlElement&)>& visit)
      : lines_(text), visit_(visit) {}

  bool for_each(pugi::xml_node& node) override {
    if (node.type() != pugi::node_element) return true;
    XmlElement element{node.name(), lines_.at(node.offset_debug()), {}, {}};
    for (const pugi::xml_attribute attribute : node.attributes()) {
      element.attributes.emplace_back(attribute.name(), attribute.value());
    }
    for (const pugi::xml_node child : node.children()) {
      const pugi::xml_node text = child.first_child();
      if (is_text(text) && !text.next_sibling()) {
        element.texts.emplace_back(child.name(), ascii::trim(text.value()));
      }
    }
    visit_(element);
    return true;
  }

 private:
  Lines lines_;
  const std::function<void(const XmlElement&)>& visit_;
};

}  // namespace

std::string_view XmlElement::value(std::string_view key) const {
  for (const auto* values : {&attributes, &texts}) {
    for (const auto& [given, text] : *values) {
      if (given == key) return text;
    }
  }
  return {};
}

void for_each_element(std::string_view text, const std::function<void(const XmlElement&)>& visit) {
  pugi::xml_document document;
  parse(text, document);
  ElementWalker walker(text, visit);
  document.traverse(walker);
}

void read_xml_scalars(std::string_view text, const ScalarVisitor& visit) {
  pugi::xml_document document;
  parse(text, document);
  ScalarWalker walker(text, visit);
  document.traverse(walker);
}

}  // namespace kestrix::index
